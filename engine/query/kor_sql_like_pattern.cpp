#include "kor_sql_like_pattern.h"

namespace
{
// The code point at a position of a UTF-16 text and where the next one starts.
// A lone surrogate stands for itself.
uint code_point_at(const QString& text, int at, int& next)
{
    const QChar c = text.at(at);
    if (c.isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate())
    {
        next = at + 2;
        return QChar::surrogateToUcs4(c, text.at(at + 1));
    }
    next = at + 1;
    return c.unicode();
}
}

KOR_SQL_LIKE_PATTERN::KOR_SQL_LIKE_PATTERN(const QString& pattern, QChar escape)
{
    const bool has_escape = !escape.isNull();
    int at = 0;
    while (at < pattern.size())
    {
        int next = at;
        uint c = code_point_at(pattern, at, next);
        if (has_escape && c == escape.unicode() && next < pattern.size())
        {
            c = code_point_at(pattern, next, next);
            m_elements.append(QChar::toCaseFolded(c));
        }
        else if (c == '%')
        {
            // Runs of '%' mean no more than one, and collapsing them keeps
            // the backtracking below linear in their number.
            if (m_elements.isEmpty() || m_elements.last() != ANY_RUN)
                m_elements.append(ANY_RUN);
        }
        else if (c == '_')
            m_elements.append(ANY_ONE);
        else
            m_elements.append(QChar::toCaseFolded(c));
        at = next;
    }
}

bool KOR_SQL_LIKE_PATTERN::matches(const QString& text) const
{
    const int pattern_size = m_elements.size();
    const uint* pattern = m_elements.constData();
    int t = 0;
    int p = 0;
    int run_p = -1;   // the last '%' passed, and where its match ends so far
    int run_t = 0;
    while (t < text.size())
    {
        int next = t;
        const uint c = code_point_at(text, t, next);
        if (p < pattern_size && pattern[p] == ANY_RUN)
        {
            run_p = p++;
            run_t = t;
            continue;
        }
        if (p < pattern_size && (pattern[p] == ANY_ONE || pattern[p] == QChar::toCaseFolded(c)))
        {
            t = next;
            ++p;
            continue;
        }
        if (run_p < 0)
            return false;
        // Let the last '%' take one more character and try again from there.
        int after = run_t;
        code_point_at(text, run_t, after);
        run_t = after;
        t = run_t;
        p = run_p + 1;
    }
    while (p < pattern_size && pattern[p] == ANY_RUN)
        ++p;
    return p == pattern_size;
}
