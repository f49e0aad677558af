#include "kor_sql_parser.h"

#include "kor_sql_lexer.h"

#include <cmath>

namespace
{
const char* const KEYWORDS[] = {"SELECT", "FROM", "JOIN", "INNER", "ON",   "WHERE", "AND",   "OR",
                                "NOT",    "LIKE", "ESCAPE", "IS",  "NULL", "TRUE",  "FALSE", "AS"};

class PARSER
{
public:
    PARSER(const QString& sql, const QVector<KOR_SQL_TOKEN>& tokens, QString& error)
        : m_sql(sql), m_tokens(tokens), m_error(error)
    {
    }

    bool statement(KOR_SQL_STATEMENT& out)
    {
        if (!expect_keyword("SELECT", QStringLiteral("SELECT")))
            return false;
        for (;;)
        {
            out.select.emplace_back();
            if (!select_item(out.select.back()))
                return false;
            if (current().type != KOR_SQL_TOKEN::COMMA)
                break;
            advance();
        }
        if (!expect_keyword("FROM", QStringLiteral("',' or FROM")))
            return false;
        if (!table_reference(out.from))
            return false;
        QString expected_next = QStringLiteral("JOIN, WHERE or the end of the statement");
        for (;;)
        {
            const int start = current().position;
            if (is_keyword_token("INNER"))
            {
                advance();
                if (!expect_keyword("JOIN", QStringLiteral("JOIN")))
                    return false;
            }
            else if (is_keyword_token("JOIN"))
                advance();
            else
                break;
            out.joins.emplace_back();
            KOR_SQL_JOIN& join = out.joins.back();
            join.position = start;
            if (!table_reference(join.table))
                return false;
            if (!expect_keyword("ON", QStringLiteral("ON")))
                return false;
            join.on = condition(0);
            if (!join.on)
                return false;
            expected_next = QStringLiteral("AND, OR, JOIN, WHERE or the end of the statement");
        }
        if (is_keyword_token("WHERE"))
        {
            advance();
            out.where = condition(0);
            if (!out.where)
                return false;
            expected_next = QStringLiteral("AND, OR or the end of the statement");
        }
        if (current().type == KOR_SQL_TOKEN::SEMICOLON)
        {
            advance();
            expected_next = QStringLiteral("the end of the statement");
        }
        if (current().type != KOR_SQL_TOKEN::END)
            return unexpected(expected_next);
        return true;
    }

private:
    const KOR_SQL_TOKEN& current() const { return m_tokens.at(m_at); }

    // The END token is never passed, so current() stays valid whatever the
    // input.
    void advance()
    {
        if (m_at + 1 < m_tokens.size())
            ++m_at;
    }

    bool is_keyword_token(const char* keyword) const
    {
        const KOR_SQL_TOKEN& token = current();
        return token.type == KOR_SQL_TOKEN::WORD
               && token.text.compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0;
    }

    bool is_name_token() const
    {
        const KOR_SQL_TOKEN& token = current();
        return token.type == KOR_SQL_TOKEN::BRACKETED
               || (token.type == KOR_SQL_TOKEN::WORD && !KOR_SQL_PARSER::is_keyword(token.text));
    }

    bool fail_at(int offset, const QString& what)
    {
        m_error = KOR_SQL_LEXER::syntax_error(m_sql, offset, what);
        return false;
    }

    bool unexpected(const QString& expected)
    {
        return fail_at(current().position, QStringLiteral("expected %1 but found %2")
                                               .arg(expected, KOR_SQL_LEXER::describe_token(current())));
    }

    bool expect_keyword(const char* keyword, const QString& expected)
    {
        if (!is_keyword_token(keyword))
            return unexpected(expected);
        advance();
        return true;
    }

    bool select_item(KOR_SQL_NAME& out)
    {
        if (current().type == KOR_SQL_TOKEN::STAR)
        {
            out.star = true;
            out.position = current().position;
            advance();
            return true;
        }
        return name(out, true, QStringLiteral("a field such as [table.field] or *"));
    }

    // [table.field], [table].[field], table.field, [field], and with
    // allow_star [table.*] and table.*.
    bool name(KOR_SQL_NAME& out, bool allow_star, const QString& expected)
    {
        if (!is_name_token())
            return unexpected(expected);
        const KOR_SQL_TOKEN first = current();
        out.position = first.position;
        advance();
        if (current().type == KOR_SQL_TOKEN::DOT)
        {
            out.qualifier = first.text.trimmed();
            advance();
            if (current().type == KOR_SQL_TOKEN::STAR && allow_star)
            {
                out.star = true;
                advance();
                return true;
            }
            if (!is_name_token())
                return unexpected(allow_star ? QStringLiteral("a field name or * after '.'")
                                             : QStringLiteral("a field name after '.'"));
            out.name = current().text.trimmed();
            if (out.name.isEmpty())
                return unexpected(QStringLiteral("a field name after '.'"));
            advance();
            return true;
        }
        const QString text = first.text.trimmed();
        const int dot = first.type == KOR_SQL_TOKEN::BRACKETED ? text.indexOf(QLatin1Char('.')) : -1;
        if (dot < 0)
        {
            out.name = text;
            return true;
        }
        out.qualifier = text.left(dot).trimmed();
        out.name = text.mid(dot + 1).trimmed();
        if (out.qualifier.isEmpty() || out.name.isEmpty())
            return fail_at(first.position, QStringLiteral("malformed name %1; write it as [table.field]")
                                               .arg(KOR_SQL_LEXER::describe_token(first)));
        if (out.name == QLatin1String("*"))
        {
            if (!allow_star)
                return fail_at(first.position, QStringLiteral("%1 can only stand in the list after SELECT")
                                                   .arg(KOR_SQL_LEXER::describe_token(first)));
            out.name.clear();
            out.star = true;
        }
        return true;
    }

    bool table_reference(KOR_SQL_TABLE_REFERENCE& out)
    {
        if (!is_name_token())
            return unexpected(QStringLiteral("a table name such as [table]"));
        out.position = current().position;
        out.table = current().text.trimmed();
        advance();
        if (is_keyword_token("AS"))
        {
            advance();
            if (!is_name_token())
                return unexpected(QStringLiteral("a name after AS"));
            out.alias = current().text.trimmed();
            advance();
        }
        return true;
    }

    bool deeper(int depth)
    {
        if (depth < KOR_SQL_PARSER::MAX_DEPTH)
            return true;
        return fail_at(current().position,
                       QStringLiteral("conditions are nested too deeply (more than %1 levels of brackets and NOT)")
                           .arg(KOR_SQL_PARSER::MAX_DEPTH));
    }

    // Null on error. AND and OR chains become one node with many children,
    // so a long chain costs no stack depth here or in later walks.
    std::unique_ptr<KOR_SQL_CONDITION> condition(int depth)
    {
        return chain(depth, KOR_SQL_CONDITION::OR);
    }

    std::unique_ptr<KOR_SQL_CONDITION> chain(int depth, KOR_SQL_CONDITION::KIND kind)
    {
        const char* keyword = kind == KOR_SQL_CONDITION::OR ? "OR" : "AND";
        auto operand = [&]() {
            return kind == KOR_SQL_CONDITION::OR ? chain(depth, KOR_SQL_CONDITION::AND) : negation(depth);
        };
        std::unique_ptr<KOR_SQL_CONDITION> first = operand();
        if (!first || !is_keyword_token(keyword))
            return first;
        auto node = std::make_unique<KOR_SQL_CONDITION>();
        node->kind = kind;
        node->position = first->position;
        node->children.push_back(std::move(first));
        while (is_keyword_token(keyword))
        {
            advance();
            std::unique_ptr<KOR_SQL_CONDITION> next = operand();
            if (!next)
                return nullptr;
            node->children.push_back(std::move(next));
        }
        return node;
    }

    std::unique_ptr<KOR_SQL_CONDITION> negation(int depth)
    {
        if (is_keyword_token("NOT"))
        {
            if (!deeper(depth))
                return nullptr;
            auto node = std::make_unique<KOR_SQL_CONDITION>();
            node->kind = KOR_SQL_CONDITION::NOT;
            node->position = current().position;
            advance();
            std::unique_ptr<KOR_SQL_CONDITION> child = negation(depth + 1);
            if (!child)
                return nullptr;
            node->children.push_back(std::move(child));
            return node;
        }
        if (current().type == KOR_SQL_TOKEN::OPEN)
        {
            if (!deeper(depth))
                return nullptr;
            advance();
            std::unique_ptr<KOR_SQL_CONDITION> inner = condition(depth + 1);
            if (!inner)
                return nullptr;
            if (current().type != KOR_SQL_TOKEN::CLOSE)
            {
                unexpected(QStringLiteral("AND, OR or ')'"));
                return nullptr;
            }
            advance();
            return inner;
        }
        return predicate();
    }

    std::unique_ptr<KOR_SQL_CONDITION> predicate()
    {
        auto node = std::make_unique<KOR_SQL_CONDITION>();
        node->position = current().position;
        if (!operand(node->left, QStringLiteral("a condition such as [table.field] = 5")))
            return nullptr;
        const KOR_SQL_TOKEN& token = current();
        KOR_SQL_CONDITION::OPERATOR op = KOR_SQL_CONDITION::EQUAL;
        bool is_comparison = true;
        switch (token.type)
        {
        case KOR_SQL_TOKEN::EQUAL: op = KOR_SQL_CONDITION::EQUAL; break;
        case KOR_SQL_TOKEN::NOT_EQUAL: op = KOR_SQL_CONDITION::NOT_EQUAL; break;
        case KOR_SQL_TOKEN::LESS: op = KOR_SQL_CONDITION::LESS; break;
        case KOR_SQL_TOKEN::GREATER: op = KOR_SQL_CONDITION::GREATER; break;
        case KOR_SQL_TOKEN::LESS_EQUAL: op = KOR_SQL_CONDITION::LESS_EQUAL; break;
        case KOR_SQL_TOKEN::GREATER_EQUAL: op = KOR_SQL_CONDITION::GREATER_EQUAL; break;
        default: is_comparison = false; break;
        }
        if (is_comparison)
        {
            const QString symbol = token.text;
            advance();
            node->kind = KOR_SQL_CONDITION::COMPARE;
            node->op = op;
            if (!operand(node->right, QStringLiteral("a field or a value after '%1'").arg(symbol)))
                return nullptr;
            return node;
        }
        if (is_keyword_token("NOT"))
        {
            advance();
            if (!is_keyword_token("LIKE"))
            {
                unexpected(QStringLiteral("LIKE after NOT"));
                return nullptr;
            }
            node->negated = true;
        }
        if (is_keyword_token("LIKE"))
        {
            advance();
            node->kind = KOR_SQL_CONDITION::LIKE;
            if (current().type != KOR_SQL_TOKEN::TEXT)
            {
                unexpected(QStringLiteral("a pattern in quotes after LIKE"));
                return nullptr;
            }
            node->right.position = current().position;
            node->right.literal.kind = KOR_SQL_LITERAL::TEXT;
            node->right.literal.text = current().text;
            advance();
            if (is_keyword_token("ESCAPE"))
            {
                advance();
                if (current().type != KOR_SQL_TOKEN::TEXT || current().text.size() != 1)
                {
                    unexpected(QStringLiteral("one character in quotes after ESCAPE"));
                    return nullptr;
                }
                node->escape = current().text;
                advance();
            }
            return node;
        }
        if (is_keyword_token("IS"))
        {
            advance();
            node->kind = KOR_SQL_CONDITION::IS_NULL;
            if (is_keyword_token("NOT"))
            {
                advance();
                node->negated = true;
            }
            if (!is_keyword_token("NULL"))
            {
                unexpected(node->negated ? QStringLiteral("NULL") : QStringLiteral("NULL or NOT NULL"));
                return nullptr;
            }
            advance();
            return node;
        }
        unexpected(QStringLiteral("a comparison (=, <>, <, >, <=, >=, LIKE or IS)"));
        return nullptr;
    }

    bool operand(KOR_SQL_OPERAND& out, const QString& expected)
    {
        const KOR_SQL_TOKEN& token = current();
        out.position = token.position;
        if (is_name_token())
        {
            out.is_field = true;
            return name(out.field, false, expected);
        }
        KOR_SQL_LITERAL& literal = out.literal;
        switch (token.type)
        {
        case KOR_SQL_TOKEN::NUMBER:
            if (!number(token, literal))
                return false;
            break;
        case KOR_SQL_TOKEN::TEXT:
            literal.kind = KOR_SQL_LITERAL::TEXT;
            literal.text = token.text;
            break;
        case KOR_SQL_TOKEN::WORD:
            if (is_keyword_token("TRUE") || is_keyword_token("FALSE"))
            {
                literal.kind = KOR_SQL_LITERAL::BOOLEAN;
                literal.boolean = is_keyword_token("TRUE");
                literal.text = literal.boolean ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
                break;
            }
            return unexpected(expected);
        default:
            return unexpected(expected);
        }
        advance();
        return true;
    }

    bool number(const KOR_SQL_TOKEN& token, KOR_SQL_LITERAL& literal)
    {
        literal.text = token.text;
        bool ok = false;
        const bool is_real = token.text.contains(QLatin1Char('.')) || token.text.contains(QLatin1Char('e'))
                             || token.text.contains(QLatin1Char('E'));
        if (is_real)
        {
            literal.kind = KOR_SQL_LITERAL::REAL;
            literal.real = token.text.toDouble(&ok);
            ok = ok && std::isfinite(literal.real);
        }
        else
        {
            literal.kind = KOR_SQL_LITERAL::INTEGER;
            literal.integer = token.text.toLongLong(&ok, 10);
            if (!ok && !token.text.startsWith(QLatin1Char('-')))
            {
                literal.kind = KOR_SQL_LITERAL::UNSIGNED;
                literal.unsigned_integer = token.text.toULongLong(&ok, 10);
            }
        }
        if (!ok)
            return fail_at(token.position, QStringLiteral("the number %1 is out of range")
                                               .arg(KOR_SQL_LEXER::describe_token(token)));
        return true;
    }

    const QString& m_sql;
    const QVector<KOR_SQL_TOKEN>& m_tokens;
    QString& m_error;
    int m_at = 0;
};
}

bool KOR_SQL_PARSER::parse(const QString& sql, KOR_SQL_STATEMENT& statement, QString& error)
{
    statement = KOR_SQL_STATEMENT();
    error.clear();
    QVector<KOR_SQL_TOKEN> tokens;
    if (!KOR_SQL_LEXER::tokenise(sql, tokens, error))
        return false;
    PARSER parser(sql, tokens, error);
    if (parser.statement(statement))
        return true;
    statement = KOR_SQL_STATEMENT();
    return false;
}

bool KOR_SQL_PARSER::is_keyword(const QString& word)
{
    for (const char* keyword : KEYWORDS)
    {
        if (word.compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}
