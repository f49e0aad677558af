// Feeds arbitrary text to the simple SQL reader. Besides the sanitizers'
// findings, it stops on two broken promises: a refusal must be a positioned
// syntax error, and the canonical text of anything accepted must read back to
// itself.
#include "kor_sql_parser.h"

#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString sql = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));

    KOR_SQL_STATEMENT statement;
    QString error;
    if (!KOR_SQL_PARSER::parse(sql, statement, error))
    {
        if (!error.startsWith(QLatin1String("Syntax error at position ")))
        {
            fprintf(stderr, "refusal without a position: %s\n", qPrintable(error));
            abort();
        }
        return 0;
    }

    const QString canonical = statement.to_text();
    KOR_SQL_STATEMENT again;
    if (!KOR_SQL_PARSER::parse(canonical, again, error))
    {
        fprintf(stderr, "canonical text refused: %s\n%s\n", qPrintable(canonical), qPrintable(error));
        abort();
    }
    if (again.to_text() != canonical)
    {
        fprintf(stderr, "canonical text changed:\n%s\n%s\n", qPrintable(canonical), qPrintable(again.to_text()));
        abort();
    }
    return 0;
}
