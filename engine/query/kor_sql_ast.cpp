#include "kor_sql_ast.h"

#include <QStringList>

namespace
{
QString bracketed(const QString& name)
{
    QString escaped = name;
    escaped.replace(QLatin1Char(']'), QStringLiteral("]]"));
    return QLatin1Char('[') + escaped + QLatin1Char(']');
}

QString quoted(const QString& text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + escaped + QLatin1Char('\'');
}

bool needs_brackets(const KOR_SQL_CONDITION& child, KOR_SQL_CONDITION::KIND parent)
{
    if (child.kind != KOR_SQL_CONDITION::AND && child.kind != KOR_SQL_CONDITION::OR)
        return false;
    // AND binds tighter than OR, so an AND inside an OR reads right without
    // brackets; every other nesting keeps them so the tree survives a reparse.
    return !(parent == KOR_SQL_CONDITION::OR && child.kind == KOR_SQL_CONDITION::AND);
}

QString child_text(const KOR_SQL_CONDITION& child, KOR_SQL_CONDITION::KIND parent)
{
    const QString text = child.to_text();
    return needs_brackets(child, parent) ? QLatin1Char('(') + text + QLatin1Char(')') : text;
}
}

QString KOR_SQL_NAME::to_text() const
{
    if (qualifier.isEmpty())
        return star ? QStringLiteral("*") : bracketed(name);
    if (star)
    {
        if (qualifier.contains(QLatin1Char('.')))
            return bracketed(qualifier) + QStringLiteral(".*");
        return bracketed(qualifier + QStringLiteral(".*"));
    }
    // A bracketed pair splits at its first dot, so names holding dots are
    // written as two bracketed parts.
    if (qualifier.contains(QLatin1Char('.')) || name.contains(QLatin1Char('.')))
        return bracketed(qualifier) + QLatin1Char('.') + bracketed(name);
    return bracketed(qualifier + QLatin1Char('.') + name);
}

QString KOR_SQL_LITERAL::to_text() const
{
    switch (kind)
    {
    case TEXT:
        return quoted(text);
    case BOOLEAN:
        return boolean ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
    case INTEGER:
    case UNSIGNED:
    case REAL:
        break;
    }
    return text;
}

QString KOR_SQL_OPERAND::to_text() const
{
    return is_field ? field.to_text() : literal.to_text();
}

QString KOR_SQL_CONDITION::operator_text(OPERATOR op)
{
    switch (op)
    {
    case EQUAL: return QStringLiteral("=");
    case NOT_EQUAL: return QStringLiteral("<>");
    case LESS: return QStringLiteral("<");
    case GREATER: return QStringLiteral(">");
    case LESS_EQUAL: return QStringLiteral("<=");
    case GREATER_EQUAL: return QStringLiteral(">=");
    }
    return QString();
}

QString KOR_SQL_CONDITION::to_text() const
{
    switch (kind)
    {
    case COMPARE:
        return left.to_text() + QLatin1Char(' ') + operator_text(op) + QLatin1Char(' ') + right.to_text();
    case LIKE:
    {
        QString text = left.to_text() + (negated ? QStringLiteral(" NOT LIKE ") : QStringLiteral(" LIKE "))
                       + right.to_text();
        if (!escape.isEmpty())
            text += QStringLiteral(" ESCAPE ") + quoted(escape);
        return text;
    }
    case IS_NULL:
        return left.to_text() + (negated ? QStringLiteral(" IS NOT NULL") : QStringLiteral(" IS NULL"));
    case NOT:
        return children.empty() ? QStringLiteral("NOT")
                                : QStringLiteral("NOT ") + child_text(*children.front(), kind);
    case AND:
    case OR:
    {
        QStringList parts;
        for (const auto& child : children)
            parts << child_text(*child, kind);
        return parts.join(kind == AND ? QStringLiteral(" AND ") : QStringLiteral(" OR "));
    }
    }
    return QString();
}

QString KOR_SQL_TABLE_REFERENCE::to_text() const
{
    if (alias.isEmpty())
        return bracketed(table);
    return bracketed(table) + QStringLiteral(" AS ") + bracketed(alias);
}

QString KOR_SQL_STATEMENT::to_text() const
{
    QStringList fields;
    for (const KOR_SQL_NAME& name : select)
        fields << name.to_text();
    QString text = QStringLiteral("SELECT ") + fields.join(QStringLiteral(", ")) + QStringLiteral(" FROM ")
                   + from.to_text();
    for (const KOR_SQL_JOIN& join : joins)
    {
        text += QStringLiteral(" JOIN ") + join.table.to_text();
        if (join.on)
            text += QStringLiteral(" ON ") + join.on->to_text();
    }
    if (where)
        text += QStringLiteral(" WHERE ") + where->to_text();
    return text;
}
