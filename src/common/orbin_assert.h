#pragma once

// Soft assertions: a broken expectation is logged with its place in the source
// and the given action runs (usually `return`, `return false`, `continue`),
// instead of taking the whole host application down with the user's unsaved
// work. Use it for conditions that "cannot happen"; user input and failures
// of files or tools are ordinary errors, not assertions.
//
//     ORBIN_ASSERT(row >= 0 && row < m_rows.size(), return QVariant());
//     ORBIN_ASSERT(session, return);

#include <QtCore/qglobal.h>

namespace ORBIN_ASSERT_DETAIL
{
// Logs "ORBIN_ASSERT: \"condition\" in file:line" as a warning. Kept out of
// line so the macro stays small at every use.
void report_failure(const char* condition, const char* file, int line);
} // namespace ORBIN_ASSERT_DETAIL

#define ORBIN_ASSERT(cond, action)                                                                           \
    if (Q_LIKELY(cond))                                                                                      \
    {                                                                                                        \
    }                                                                                                        \
    else                                                                                                     \
    {                                                                                                        \
        ::ORBIN_ASSERT_DETAIL::report_failure(#cond, __FILE__, __LINE__);                                    \
        action;                                                                                              \
    }                                                                                                        \
    do                                                                                                       \
    {                                                                                                        \
    } while (false)
