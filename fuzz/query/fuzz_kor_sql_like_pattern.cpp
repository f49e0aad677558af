// Matches LIKE patterns against texts and checks every answer against a plain
// table-filling matcher. The input is the pattern, a line feed, and the text;
// '!' serves as escape character when the input starts with it.
#include "kor_sql_like_pattern.h"

#include <QString>
#include <QVector>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace
{
struct ELEMENT
{
    enum KIND { CHARACTER, ONE, RUN } kind;
    uint code_point;
};

QVector<uint> code_points(const QString& text)
{
    QVector<uint> out;
    for (int i = 0; i < text.size(); ++i)
    {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
        {
            out.append(QChar::surrogateToUcs4(c, text.at(i + 1)));
            ++i;
        }
        else
            out.append(c.unicode());
    }
    return out;
}

bool reference_match(const QString& pattern, QChar escape, const QString& text)
{
    QVector<ELEMENT> elements;
    const QVector<uint> p = code_points(pattern);
    for (int i = 0; i < p.size(); ++i)
    {
        if (!escape.isNull() && p[i] == escape.unicode() && i + 1 < p.size())
            elements.append({ELEMENT::CHARACTER, QChar::toCaseFolded(p[++i])});
        else if (p[i] == '%')
            elements.append({ELEMENT::RUN, 0});
        else if (p[i] == '_')
            elements.append({ELEMENT::ONE, 0});
        else
            elements.append({ELEMENT::CHARACTER, QChar::toCaseFolded(p[i])});
    }
    const QVector<uint> t = code_points(text);
    // can[i][j]: the first i elements match the first j characters.
    const int n = elements.size();
    const int m = t.size();
    QVector<QVector<bool>> can(n + 1, QVector<bool>(m + 1, false));
    can[0][0] = true;
    for (int i = 1; i <= n; ++i)
    {
        const ELEMENT& e = elements[i - 1];
        for (int j = 0; j <= m; ++j)
        {
            if (e.kind == ELEMENT::RUN)
                can[i][j] = can[i - 1][j] || (j > 0 && can[i][j - 1]);
            else if (j > 0)
                can[i][j] = can[i - 1][j - 1] && (e.kind == ELEMENT::ONE || e.code_point == QChar::toCaseFolded(t[j - 1]));
        }
    }
    return can[n][m];
}
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 2000)
        return 0;
    QString input = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    QChar escape;
    if (input.startsWith(QLatin1Char('!')))
    {
        escape = QLatin1Char('!');
        input.remove(0, 1);
    }
    const int split = input.indexOf(QLatin1Char('\n'));
    const QString pattern = split < 0 ? input : input.left(split);
    const QString text = split < 0 ? QString() : input.mid(split + 1);

    const bool fast = KOR_SQL_LIKE_PATTERN(pattern, escape).matches(text);
    if (fast != reference_match(pattern, escape, text))
    {
        fprintf(stderr, "pattern '%s' text '%s': matcher says %d\n", qPrintable(pattern), qPrintable(text), int(fast));
        abort();
    }
    return 0;
}
