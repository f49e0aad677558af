#include "kor_library_dialog_factory.h"

namespace
{
KOR_LIBRARY_DIALOG_FACTORY& factory()
{
    static KOR_LIBRARY_DIALOG_FACTORY installed;
    return installed;
}
} // namespace

void KOR_LIBRARY_DIALOG_FACTORY::install(const KOR_LIBRARY_DIALOG_FACTORY& makers)
{
    factory() = makers;
}

const KOR_LIBRARY_DIALOG_FACTORY& KOR_LIBRARY_DIALOG_FACTORY::installed()
{
    return factory();
}
