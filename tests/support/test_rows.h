#pragma once

#include <QtTest/QTest>

namespace ORBIN_TEST
{
// One row of a `_data()` table on one line: row("name", a, b) is
// QTest::newRow("name") << a << b, kept on one line where a formatter would
// break between string literals. Values must have their column's type
// exactly (int(...) around enumerators), as with newRow itself.
template <typename... VALUES> void row(const char* name, const VALUES&... values)
{
    (QTest::newRow(name) << ... << values);
}
} // namespace ORBIN_TEST
