#include "kor_sql_lexer.h"

namespace
{
// Long tokens are cut in messages so that one pasted blob does not drown the
// rest of the status line.
const int MAX_SHOWN_TOKEN_LENGTH = 40;

QString shortened(const QString& text)
{
    if (text.size() <= MAX_SHOWN_TOKEN_LENGTH)
        return text;
    return text.left(MAX_SHOWN_TOKEN_LENGTH) + QStringLiteral("...");
}

bool is_word_start(QChar c)
{
    return c.isLetter() || c == QLatin1Char('_');
}

bool is_word_part(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

bool is_digit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

class SCANNER
{
public:
    SCANNER(const QString& sql, QVector<KOR_SQL_TOKEN>& tokens, QString& error)
        : m_sql(sql), m_tokens(tokens), m_error(error)
    {
    }

    bool run()
    {
        const int size = m_sql.size();
        while (m_at < size)
        {
            const QChar c = m_sql.at(m_at);
            if (c.isSpace())
            {
                ++m_at;
                continue;
            }
            if (c == QLatin1Char('-') && peek(1) == QLatin1Char('-'))
            {
                while (m_at < size && m_sql.at(m_at) != QLatin1Char('\n'))
                    ++m_at;
                continue;
            }
            bool ok = true;
            if (c == QLatin1Char('['))
                ok = scan_bracketed();
            else if (c == QLatin1Char('\''))
                ok = scan_text();
            else if (is_digit(c) || (c == QLatin1Char('-') && is_digit(peek(1))))
                ok = scan_number();
            else if (is_word_start(c))
                scan_word();
            else
                ok = scan_symbol();
            if (!ok)
                return false;
        }
        KOR_SQL_TOKEN end;
        end.type = KOR_SQL_TOKEN::END;
        end.position = size;
        m_tokens.append(end);
        return true;
    }

private:
    QChar peek(int ahead) const
    {
        const int at = m_at + ahead;
        return at < m_sql.size() ? m_sql.at(at) : QChar();
    }

    void add(KOR_SQL_TOKEN::TYPE type, int start, const QString& text)
    {
        KOR_SQL_TOKEN token;
        token.type = type;
        token.text = text;
        token.position = start;
        token.length = m_at - start;
        m_tokens.append(token);
    }

    bool fail(int offset, const QString& what)
    {
        m_error = KOR_SQL_LEXER::syntax_error(m_sql, offset, what);
        return false;
    }

    // Reads up to `close`, a doubled `close` standing for one; the text
    // without its delimiters goes to `text`. `stray`, unless null, may not
    // appear inside.
    bool scan_delimited(QChar close, QChar stray, const QString& unclosed, QString& text)
    {
        const int start = m_at++;
        for (;;)
        {
            if (m_at >= m_sql.size())
                return fail(start, unclosed);
            const QChar c = m_sql.at(m_at);
            if (!stray.isNull() && c == stray)
                return fail(start, unclosed);
            if (c == close)
            {
                if (peek(1) == close)
                {
                    text += c;
                    m_at += 2;
                    continue;
                }
                ++m_at;
                return true;
            }
            text += c;
            ++m_at;
        }
    }

    bool scan_bracketed()
    {
        const int start = m_at;
        QString text;
        // Names never hold '[': one inside means the ']' of this name was
        // forgotten, and saying so beats a puzzle about a later token.
        if (!scan_delimited(QLatin1Char(']'), QLatin1Char('['),
                            QStringLiteral("the name opened here with '[' is not closed with ']'"), text))
            return false;
        if (text.trimmed().isEmpty())
            return fail(start, QStringLiteral("empty name '[]'"));
        add(KOR_SQL_TOKEN::BRACKETED, start, text);
        return true;
    }

    bool scan_text()
    {
        const int start = m_at;
        QString text;
        if (!scan_delimited(QLatin1Char('\''), QChar(),
                            QStringLiteral("the text opened here with a quote is not closed"), text))
            return false;
        add(KOR_SQL_TOKEN::TEXT, start, text);
        return true;
    }

    bool scan_number()
    {
        const int start = m_at;
        if (m_sql.at(m_at) == QLatin1Char('-'))
            ++m_at;
        while (is_digit(peek(0)))
            ++m_at;
        if (peek(0) == QLatin1Char('.') && is_digit(peek(1)))
        {
            ++m_at;
            while (is_digit(peek(0)))
                ++m_at;
        }
        if (peek(0) == QLatin1Char('e') || peek(0) == QLatin1Char('E'))
        {
            int ahead = 1;
            if (peek(1) == QLatin1Char('+') || peek(1) == QLatin1Char('-'))
                ahead = 2;
            if (is_digit(peek(ahead)))
            {
                m_at += ahead;
                while (is_digit(peek(0)))
                    ++m_at;
            }
        }
        // "5abc" or "1.2.3" would otherwise read as two tokens and give a
        // confusing message about the second one.
        if (is_word_part(peek(0)) || peek(0) == QLatin1Char('.'))
        {
            int end = m_at;
            while (end < m_sql.size() && (is_word_part(m_sql.at(end)) || m_sql.at(end) == QLatin1Char('.')))
                ++end;
            return fail(start, QStringLiteral("malformed number '%1'").arg(shortened(m_sql.mid(start, end - start))));
        }
        add(KOR_SQL_TOKEN::NUMBER, start, m_sql.mid(start, m_at - start));
        return true;
    }

    void scan_word()
    {
        const int start = m_at;
        while (m_at < m_sql.size() && is_word_part(m_sql.at(m_at)))
            ++m_at;
        add(KOR_SQL_TOKEN::WORD, start, m_sql.mid(start, m_at - start));
    }

    bool scan_symbol()
    {
        const int start = m_at;
        const QChar c = m_sql.at(m_at);
        const QChar next = peek(1);
        KOR_SQL_TOKEN::TYPE type;
        int length = 1;
        switch (c.unicode())
        {
        case ',': type = KOR_SQL_TOKEN::COMMA; break;
        case '.': type = KOR_SQL_TOKEN::DOT; break;
        case '*': type = KOR_SQL_TOKEN::STAR; break;
        case '(': type = KOR_SQL_TOKEN::OPEN; break;
        case ')': type = KOR_SQL_TOKEN::CLOSE; break;
        case ';': type = KOR_SQL_TOKEN::SEMICOLON; break;
        case '=': type = KOR_SQL_TOKEN::EQUAL; break;
        case '<':
            if (next == QLatin1Char('>'))
            {
                type = KOR_SQL_TOKEN::NOT_EQUAL;
                length = 2;
            }
            else if (next == QLatin1Char('='))
            {
                type = KOR_SQL_TOKEN::LESS_EQUAL;
                length = 2;
            }
            else
                type = KOR_SQL_TOKEN::LESS;
            break;
        case '>':
            if (next == QLatin1Char('='))
            {
                type = KOR_SQL_TOKEN::GREATER_EQUAL;
                length = 2;
            }
            else
                type = KOR_SQL_TOKEN::GREATER;
            break;
        case '!':
            if (next == QLatin1Char('='))
            {
                type = KOR_SQL_TOKEN::NOT_EQUAL;
                length = 2;
                break;
            }
            return fail(start, QStringLiteral("unexpected character '!'"));
        case ']':
            return fail(start, QStringLiteral("']' without a matching '['"));
        default:
        {
            // Show a character outside the BMP whole rather than half of it.
            int shown = 1;
            if (c.isHighSurrogate() && next.isLowSurrogate())
                shown = 2;
            return fail(start, QStringLiteral("unexpected character '%1'").arg(m_sql.mid(start, shown)));
        }
        }
        m_at += length;
        add(type, start, m_sql.mid(start, length));
        return true;
    }

    const QString& m_sql;
    QVector<KOR_SQL_TOKEN>& m_tokens;
    QString& m_error;
    int m_at = 0;
};
}

bool KOR_SQL_LEXER::tokenise(const QString& sql, QVector<KOR_SQL_TOKEN>& tokens, QString& error)
{
    tokens.clear();
    error.clear();
    SCANNER scanner(sql, tokens, error);
    if (scanner.run())
        return true;
    tokens.clear();
    return false;
}

QString KOR_SQL_LEXER::describe_position(const QString& sql, int offset)
{
    const int clamped = qBound(0, offset, sql.size());
    const QString position = QStringLiteral("position %1").arg(clamped + 1);
    if (!sql.contains(QLatin1Char('\n')))
        return position;
    int line = 1;
    int line_start = 0;
    for (int i = 0; i < clamped; ++i)
    {
        if (sql.at(i) == QLatin1Char('\n'))
        {
            ++line;
            line_start = i + 1;
        }
    }
    return QStringLiteral("%1 (line %2, column %3)").arg(position).arg(line).arg(clamped - line_start + 1);
}

QString KOR_SQL_LEXER::syntax_error(const QString& sql, int offset, const QString& what)
{
    return QStringLiteral("Syntax error at %1: %2").arg(describe_position(sql, offset), what);
}

QString KOR_SQL_LEXER::describe_token(const KOR_SQL_TOKEN& token)
{
    switch (token.type)
    {
    case KOR_SQL_TOKEN::END:
        return QStringLiteral("the end of the statement");
    case KOR_SQL_TOKEN::TEXT:
        return QStringLiteral("the text '%1'").arg(shortened(token.text));
    case KOR_SQL_TOKEN::BRACKETED:
        return QStringLiteral("'[%1]'").arg(shortened(token.text));
    default:
        return QStringLiteral("'%1'").arg(shortened(token.text));
    }
}
