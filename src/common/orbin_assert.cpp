#include "orbin_assert.h"

#include <QtCore/QDebug>

namespace ORBIN_ASSERT_DETAIL
{
void report_failure(const char* condition, const char* file, int line)
{
    qWarning("ORBIN_ASSERT: \"%s\" in %s:%d", condition, file, line);
}
} // namespace ORBIN_ASSERT_DETAIL
