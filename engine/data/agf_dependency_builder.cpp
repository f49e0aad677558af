#include "agf_dependency_builder.h"

#include "kor_field_schema.h"
#include "kor_table_schema.h"

QStringList AGF_DEPENDENCY_BUILDER::entries(const QString& text)
{
    QStringList result;
    for (const QString& part : text.split(QLatin1Char(';')))
    {
        const QString entry = part.trimmed();
        if (!entry.isEmpty())
            result.append(entry);
    }
    return result;
}

bool AGF_DEPENDENCY_BUILDER::validate_special_dependency_string(const QString& text,
                                                                const KOR_TABLE_SCHEMA& schema,
                                                                QString& error)
{
    for (const QString& entry : entries(text))
    {
        const bool from_this = entry.contains(QLatin1String("->"));
        const bool towards_this = entry.contains(QLatin1String("<-"));
        if (from_this == towards_this)
        {
            error = QStringLiteral("'%1' needs exactly one of '->' or '<-'").arg(entry);
            return false;
        }
        const QStringList sides = entry.split(from_this ? QLatin1String("->") : QLatin1String("<-"));
        const QString field = sides.value(0).trimmed();
        const QString target = sides.value(1).trimmed();
        if (!schema.field_schema_by_name(field))
        {
            error = QStringLiteral("'%1': the table '%2' has no field '%3'")
                        .arg(entry, schema.get_table_name(), field);
            return false;
        }
        const QStringList target_parts = target.split(QLatin1Char('.'));
        if (target_parts.size() != 2 || !KOR_FIELD_SCHEMA::is_valid_name(target_parts.at(0).trimmed()) ||
            !KOR_FIELD_SCHEMA::is_valid_name(target_parts.at(1).trimmed()))
        {
            error = QStringLiteral("'%1': '%2' is not of the form table.field").arg(entry, target);
            return false;
        }
    }
    return true;
}
