#include "global_search_pattern.h"

namespace
{
inline ushort lower(ushort unit)
{
    if (unit < 128)
        return unit >= 'A' && unit <= 'Z' ? ushort(unit + ('a' - 'A')) : unit;
    return QChar(unit).toLower().unicode();
}

QString lower_units(const QString& text)
{
    QString result = text;
    for (QChar& unit : result)
        unit = QChar(lower(unit.unicode()));
    return result;
}

// Every character the text of a value of the type can hold.
QString characters_of(KOR_FIELD_TYPE type)
{
    switch (type)
    {
    case KFT_YESNO:
        return QStringLiteral("truefals");
    case KFT_INTEGER:
    case KFT_UNSIGNED_INTEGER:
    case KFT_AUTONUMBER:
    case KFT_UNIQUE_ID:
    case KFT_CARD64:
        return QStringLiteral("-0123456789");
    case KFT_SINGLE:
    case KFT_DOUBLE:
    case KFT_DECIMAL:
        // Shortest round-trip texts: "-2.5e-07", "1e+20", "inf", "nan".
        return QStringLiteral("-+.0123456789einfa");
    case KFT_DATE_TIME:
        return QStringLiteral("-:.0123456789TZ");
    default:
        return QString();
    }
}
} // namespace

GLOBAL_SEARCH_PATTERN::GLOBAL_SEARCH_PATTERN(const QString& pattern, Qt::CaseSensitivity case_sensitivity,
                                             bool exact_match)
    : m_pattern(pattern), m_case_sensitivity(case_sensitivity), m_exact_match(exact_match)
{
    // QRegExp's wildcard syntax gives brackets and backslashes rules of their
    // own (sets, and a backslash that makes the next star literal).
    if (pattern.contains(QLatin1Char('[')) || pattern.contains(QLatin1Char(']')) ||
        pattern.contains(QLatin1Char('\\')))
    {
        m_use_regexp = true;
        m_regexp = QRegExp(pattern, case_sensitivity, QRegExp::Wildcard);
        return;
    }
    const QString folded = case_sensitivity == Qt::CaseInsensitive ? lower_units(pattern) : pattern;
    m_leading_star = folded.startsWith(QLatin1Char('*'));
    m_trailing_star = folded.endsWith(QLatin1Char('*'));
    for (const QString& part : folded.split(QLatin1Char('*'), Qt::SkipEmptyParts))
    {
        PIECE piece;
        piece.text = part;
        piece.has_any = part.contains(QLatin1Char('?'));
        m_pieces.append(piece);
        for (const QChar unit : part)
            if (unit != QLatin1Char('?') && !m_literals.contains(unit))
                m_literals.append(unit);
        m_shortest += part.size();
    }
    // Without a star an exact match has the pattern's length.
    if (exact_match && !folded.contains(QLatin1Char('*')))
        m_longest = m_shortest;
}

bool GLOBAL_SEARCH_PATTERN::can_match_type(KOR_FIELD_TYPE type) const
{
    if (m_use_regexp || m_literals.isEmpty())
        return true;
    QString allowed = characters_of(type);
    if (allowed.isEmpty())
        return true;
    if (m_case_sensitivity == Qt::CaseInsensitive)
        allowed = lower_units(allowed);
    for (const QChar unit : m_literals)
        if (!allowed.contains(unit))
            return false;
    return true;
}

bool GLOBAL_SEARCH_PATTERN::piece_at(const PIECE& piece, const QChar* text) const
{
    const QChar* wanted = piece.text.constData();
    const int length = piece.text.size();
    if (m_case_sensitivity == Qt::CaseSensitive)
    {
        if (!piece.has_any)
            return std::equal(wanted, wanted + length, text);
        for (int i = 0; i < length; ++i)
            if (wanted[i] != QLatin1Char('?') && wanted[i] != text[i])
                return false;
        return true;
    }
    for (int i = 0; i < length; ++i)
        if ((!piece.has_any || wanted[i] != QLatin1Char('?')) &&
            wanted[i].unicode() != lower(text[i].unicode()))
            return false;
    return true;
}

int GLOBAL_SEARCH_PATTERN::find_piece(const PIECE& piece, const QChar* text, int from, int length) const
{
    const int size = piece.text.size();
    const int last = length - size;
    if (last < from)
        return -1;
    const ushort first = piece.text.at(0).unicode();
    if (first == '?')
    {
        for (int i = from; i <= last; ++i)
            if (piece_at(piece, text + i))
                return i;
        return -1;
    }
    const bool fold = m_case_sensitivity == Qt::CaseInsensitive;
    for (int i = from; i <= last; ++i)
    {
        const ushort unit = fold ? lower(text[i].unicode()) : text[i].unicode();
        if (unit == first && piece_at(piece, text + i))
            return i;
    }
    return -1;
}

bool GLOBAL_SEARCH_PATTERN::match(const QChar* text, int length) const
{
    if (m_use_regexp)
    {
        const QString copy = QString::fromRawData(text, length);
        return m_exact_match ? m_regexp.exactMatch(copy) : m_regexp.indexIn(copy) != -1;
    }
    if (m_pieces.isEmpty())
        return !m_exact_match || m_leading_star || length == 0;
    int position = 0;
    int first = 0;
    int last = m_pieces.size();
    if (m_exact_match)
    {
        const bool anchored_both = !m_leading_star && !m_trailing_star;
        if (anchored_both && m_pieces.size() == 1)
            return m_pieces[0].text.size() == length && piece_at(m_pieces[0], text);
        if (!m_leading_star)
        {
            const PIECE& piece = m_pieces[0];
            if (piece.text.size() > length || !piece_at(piece, text))
                return false;
            position = piece.text.size();
            first = 1;
        }
        if (!m_trailing_star)
        {
            const PIECE& piece = m_pieces[last - 1];
            const int start = length - piece.text.size();
            if (start < position || !piece_at(piece, text + start))
                return false;
            length = start;
            --last;
        }
    }
    for (int i = first; i < last; ++i)
    {
        const int found = find_piece(m_pieces[i], text, position, length);
        if (found < 0)
            return false;
        position = found + m_pieces[i].text.size();
    }
    return true;
}
