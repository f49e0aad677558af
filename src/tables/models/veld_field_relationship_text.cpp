#include "veld_field_relationship_text.h"

#include "kor_field_schema.h"

#include <QList>
#include <QPair>
#include <QStringList>

namespace
{
// "<i>field</i><br>" for one field, "{<i>a:b</i>}<br>" for several.
QString field_list_text(const QStringList& fields)
{
    if (fields.size() == 1)
        return QStringLiteral("<i>") + fields.first() + QStringLiteral("</i><br>");
    return QStringLiteral("{<i>") + fields.join(QLatin1Char(':')) + QStringLiteral("</i>}<br>");
}

// The pairs are sorted, so the fields of one table are neighbours.
QString grouped_by_table(const QList<QPair<QString, QString>>& references)
{
    QString text;
    int i = 0;
    while (i < references.size())
    {
        const QString& table = references[i].first;
        QStringList fields;
        for (; i < references.size() && references[i].first == table; ++i)
            fields.append(references[i].second);
        text += QStringLiteral("  <i>") + table + QStringLiteral("</i>.") + field_list_text(fields);
    }
    return text;
}
} // namespace

QString VELD_FIELD_RELATIONSHIP_TEXT::build(const KOR_FIELD_SCHEMA& field, const QString& description)
{
    QString text = QStringLiteral("<b>") + field.field_name() + QStringLiteral("</b> field ");
    if (!description.isEmpty())
        text += QStringLiteral("<br><br>") + description + QStringLiteral("<br>");

    QString relationships;
    if (const QPair<QString, QString>* dependency = field.dependency())
        relationships += QStringLiteral("<br>... depends on:<br>") + QStringLiteral("  <i>") +
                         dependency->first + QLatin1Char('.') + dependency->second +
                         QStringLiteral("</i><br>");
    if (!field.dependents().isEmpty())
    {
        relationships += QStringLiteral("<br>... is a dependency of:<br>");
        for (const QPair<QString, QString>& dependent : field.dependents())
            relationships += QStringLiteral("  <i>") + dependent.first + QLatin1Char('.') + dependent.second +
                             QStringLiteral("</i><br>");
    }
    if (!field.source_table().isEmpty() && !field.lookup_fields().isEmpty())
        relationships += QStringLiteral("<br>... looks up values from:<br>") + QStringLiteral("  <i>") +
                         field.source_table() + QStringLiteral("</i>.") +
                         field_list_text(field.lookup_fields());
    if (!field.looked_up_by().isEmpty())
        relationships += QStringLiteral("<br>... looked up by:<br>") + grouped_by_table(field.looked_up_by());

    if (relationships.isEmpty())
        relationships = QStringLiteral(" has no lookups or relationships");
    return text + relationships;
}
