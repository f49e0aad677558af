#include "sample_field.h"

#include "kor_field_schema.h"

#include <QSet>

SAMPLE_FIELD SAMPLE_FIELD::key(const QString& name, KOR_FIELD_TYPE type)
{
    SAMPLE_FIELD field = of(name, type);
    field.is_key = true;
    field.is_required = true;
    return field;
}

SAMPLE_FIELD SAMPLE_FIELD::of(const QString& name, KOR_FIELD_TYPE type)
{
    SAMPLE_FIELD field;
    field.name = name;
    field.type = type;
    return field;
}

SAMPLE_FIELD& SAMPLE_FIELD::required()
{
    is_required = true;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::primary()
{
    is_key = true;
    is_required = true;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::localised(const QString& sheet)
{
    spreadsheet = sheet;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::voiced()
{
    for_vo = true;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::with_default(const QVariant& value)
{
    default_value = value;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::max_length(int value)
{
    length = value;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::refers_to(const QString& table, const QString& field, const QStringList& lookups)
{
    foreign_table = table;
    foreign_field = field;
    lookup_fields = lookups;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::fixed(const QStringList& values)
{
    fixed_values = values;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::file(const QString& path)
{
    is_file = true;
    relative_path = path;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::describe(const QString& text)
{
    description = text;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::encyclopaedia()
{
    encyclopaedia_export = true;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::agf_from()
{
    agf_from_this_field = true;
    return *this;
}

SAMPLE_FIELD& SAMPLE_FIELD::startpos_reprocess()
{
    startpos = true;
    return *this;
}

KOR_FIELD_SCHEMA* SAMPLE_FIELD::make(const QUuid& uuid) const
{
    auto* field = new KOR_FIELD_SCHEMA(uuid);
    field->initialise(is_key, name, type, is_required, default_value, type == KFT_TEXT ? length : -1, is_file,
                      relative_path, QString(), description, encyclopaedia_export, agf_from_this_field,
                      false);
    if (is_localised())
    {
        field->set_metafield_value(KMF_LOCALISED, true);
        field->set_metafield_value(KMF_SPREADSHEET, spreadsheet);
    }
    if (!foreign_table.isEmpty())
    {
        field->add_dependency(foreign_table, foreign_field);
        if (!lookup_fields.isEmpty())
            field->set_metafield_value(KMF_LOOKUP_FIELDS, lookup_fields);
    }
    if (!fixed_values.isEmpty())
        field->set_fixed_column_values(QSet<QString>(fixed_values.begin(), fixed_values.end()));
    if (startpos)
        field->set_metafield_value(KMF_STARTPOS_REPROCESS, true);
    return field;
}
