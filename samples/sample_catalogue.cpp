#include "sample_catalogue.h"

#include "sample_tables.h"

#include <QMap>
#include <QSet>

SAMPLE_CATALOGUE SAMPLE_CATALOGUE::standard()
{
    SAMPLE_CATALOGUE catalogue;
    SAMPLE_TABLES::add_world(catalogue);
    SAMPLE_TABLES::add_military(catalogue);
    SAMPLE_TABLES::add_characters(catalogue);
    SAMPLE_TABLES::add_campaign(catalogue);
    SAMPLE_TABLES::add_voice(catalogue);
    SAMPLE_TABLES::add_interface(catalogue);
    // The bookkeeping tables describe all the others, so they come last.
    SAMPLE_TABLES::add_bookkeeping(catalogue);
    return catalogue;
}

void SAMPLE_CATALOGUE::add(const SAMPLE_TABLE& table)
{
    m_tables.append(table);
}

const SAMPLE_TABLE* SAMPLE_CATALOGUE::table(const QString& name) const
{
    for (const SAMPLE_TABLE& table : m_tables)
        if (table.name() == name)
            return &table;
    return nullptr;
}

QStringList SAMPLE_CATALOGUE::names() const
{
    QStringList result;
    for (const SAMPLE_TABLE& table : m_tables)
        result.append(table.name());
    return result;
}

bool SAMPLE_CATALOGUE::creation_order(QStringList& out, QString& error) const
{
    out.clear();
    QSet<QString> placed;
    QList<const SAMPLE_TABLE*> pending;
    for (const SAMPLE_TABLE& table : m_tables)
        pending.append(&table);
    // Repeated passes keep the catalogue's order wherever relationships allow.
    while (!pending.isEmpty())
    {
        bool progress = false;
        for (int i = 0; i < pending.size(); ++i)
        {
            const SAMPLE_TABLE* table = pending.at(i);
            bool ready = true;
            for (const SAMPLE_FIELD& field : table->fields())
                if (!field.foreign_table.isEmpty() && field.foreign_table != table->name() &&
                    !placed.contains(field.foreign_table))
                    ready = false;
            if (!ready)
                continue;
            out.append(table->name());
            placed.insert(table->name());
            pending.removeAt(i--);
            progress = true;
        }
        if (!progress)
        {
            QStringList stuck;
            for (const SAMPLE_TABLE* table : qAsConst(pending))
                stuck.append(table->name());
            error =
                QStringLiteral("The relationships of these tables form a cycle or name unknown tables: %1")
                    .arg(stuck.join(QStringLiteral(", ")));
            return false;
        }
    }
    return true;
}

bool SAMPLE_CATALOGUE::check(QStringList& errors) const
{
    const int before = errors.size();
    QSet<QString> tables;
    for (const SAMPLE_TABLE& table : m_tables)
    {
        if (tables.contains(table.name().toLower()))
            errors.append(QStringLiteral("Table '%1' is described twice").arg(table.name()));
        tables.insert(table.name().toLower());
        if (table.key_fields().isEmpty())
            errors.append(QStringLiteral("Table '%1' has no key field").arg(table.name()));
        if (!table.generator() && !table.bulk_generator())
            errors.append(QStringLiteral("Table '%1' has no row generator").arg(table.name()));
        QSet<QString> fields;
        for (const SAMPLE_FIELD& field : table.fields())
        {
            if (fields.contains(field.name.toLower()))
                errors.append(
                    QStringLiteral("Field '%1.%2' is described twice").arg(table.name(), field.name));
            fields.insert(field.name.toLower());
            if (field.is_localised() && field.type != KFT_TEXT)
                errors.append(
                    QStringLiteral("Field '%1.%2' is localised but no text").arg(table.name(), field.name));
            if (field.foreign_table.isEmpty())
                continue;
            const SAMPLE_TABLE* foreign = this->table(field.foreign_table);
            if (!foreign)
            {
                errors.append(QStringLiteral("Field '%1.%2' refers to the unknown table '%3'")
                                  .arg(table.name(), field.name, field.foreign_table));
                continue;
            }
            const QString target =
                field.foreign_field.isEmpty() ? foreign->key_fields().value(0) : field.foreign_field;
            if (!foreign->field(target))
                errors.append(QStringLiteral("Field '%1.%2' refers to the unknown field '%3.%4'")
                                  .arg(table.name(), field.name, field.foreign_table, target));
            for (const QString& lookup : field.lookup_fields)
                if (!foreign->field(lookup))
                    errors.append(QStringLiteral("Field '%1.%2' looks up the unknown field '%3.%4'")
                                      .arg(table.name(), field.name, field.foreign_table, lookup));
        }
    }
    return errors.size() == before;
}
