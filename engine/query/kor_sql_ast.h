#pragma once

#include <QString>

#include <memory>
#include <vector>

// The syntax tree of one simple SQL statement, as the parser reads it. Names
// are kept as written; the binder resolves them against the schemas. Every
// node keeps the offset where it starts so that later errors can point there.

// A field or table reference: [table.field], table.field, [field], [t.*], *.
struct KOR_SQL_NAME
{
    QString qualifier;   // table or alias; empty when the name stands alone
    QString name;        // empty when star is set
    bool star = false;
    int position = 0;

    QString to_text() const;
};

struct KOR_SQL_LITERAL
{
    enum KIND
    {
        INTEGER,     // fits a signed 64-bit number
        UNSIGNED,    // only fits an unsigned 64-bit number
        REAL,
        TEXT,
        BOOLEAN
    };

    KIND kind = INTEGER;
    qint64 integer = 0;
    quint64 unsigned_integer = 0;
    double real = 0.0;
    bool boolean = false;
    // Numbers as written (so a text field compares with the digits the user
    // typed); the value of a quoted text.
    QString text;

    QString to_text() const;
};

struct KOR_SQL_OPERAND
{
    bool is_field = false;
    KOR_SQL_NAME field;
    KOR_SQL_LITERAL literal;
    int position = 0;

    QString to_text() const;
};

struct KOR_SQL_CONDITION
{
    enum KIND
    {
        AND,        // two or more children
        OR,         // two or more children
        NOT,        // one child
        COMPARE,    // left op right
        LIKE,       // left [NOT] LIKE pattern [ESCAPE 'c']
        IS_NULL     // left IS [NOT] NULL
    };

    enum OPERATOR
    {
        EQUAL,
        NOT_EQUAL,
        LESS,
        GREATER,
        LESS_EQUAL,
        GREATER_EQUAL
    };

    KIND kind = COMPARE;
    std::vector<std::unique_ptr<KOR_SQL_CONDITION>> children;
    OPERATOR op = EQUAL;
    KOR_SQL_OPERAND left;
    KOR_SQL_OPERAND right;      // COMPARE: right side; LIKE: the pattern
    bool negated = false;       // NOT LIKE, IS NOT NULL
    QString escape;             // LIKE: empty or one character
    int position = 0;

    QString to_text() const;
    static QString operator_text(OPERATOR op);
};

struct KOR_SQL_TABLE_REFERENCE
{
    QString table;
    QString alias;   // empty when none was given
    int position = 0;

    // The name fields use to refer to this table: the alias when given.
    const QString& qualifier() const { return alias.isEmpty() ? table : alias; }
    QString to_text() const;
};

struct KOR_SQL_JOIN
{
    KOR_SQL_TABLE_REFERENCE table;
    std::unique_ptr<KOR_SQL_CONDITION> on;
    int position = 0;
};

struct KOR_SQL_STATEMENT
{
    std::vector<KOR_SQL_NAME> select;
    KOR_SQL_TABLE_REFERENCE from;
    std::vector<KOR_SQL_JOIN> joins;
    std::unique_ptr<KOR_SQL_CONDITION> where;   // null without WHERE

    // The statement in canonical form: keywords in capitals, names in
    // brackets, one space between tokens, brackets only where the tree needs
    // them. Parsing the canonical text gives the same tree back.
    QString to_text() const;
};
