#include "db_validator.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_file_commit.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>

namespace
{
QString target_name(const QString& table, const QString& field)
{
    return table + QLatin1Char('.') + field;
}

// The field a relationship names: its foreign field, or the foreign table's
// first key field when it names none.
const KOR_FIELD_SCHEMA* foreign_field(const KOR_DATABASE_SCHEMA& schema, const KOR_FIELD_SCHEMA& field)
{
    const QPair<QString, QString>* dependency = field.dependency();
    const KOR_TABLE_SCHEMA* foreign = dependency ? schema.table_schema(dependency->first) : nullptr;
    if (!foreign)
        return nullptr;
    if (!dependency->second.isEmpty())
        return foreign->field_schema_by_name(dependency->second);
    return foreign->primary_key_fields().isEmpty()
               ? nullptr
               : foreign->field_schema_by_name(foreign->primary_key_fields().first());
}

QString shortened(const QString& text)
{
    return text.size() > 60 ? text.left(57) + QStringLiteral("...") : text;
}
} // namespace

QString DB_FINDING::text() const
{
    QString place = table;
    if (!key.isEmpty())
        place += QLatin1Char('[') + key + QLatin1Char(']');
    if (!field.isEmpty())
        place += (place.isEmpty() ? QString() : QStringLiteral(".")) + field;
    return place.isEmpty() ? message : place + QStringLiteral(": ") + message;
}

void DB_VALIDATOR::add(const QString& table, const QString& key, const QString& field, const QString& message,
                       int record, int column)
{
    m_ordered.append(
        ORDERED_FINDING{DB_FINDING{table, key, field, message}, record, column, m_ordered.size()});
}

bool DB_VALIDATOR::validate(QString& error, const QString& path, const PROGRESS& progress)
{
    m_schema.clear();
    m_targets.clear();
    m_target_values.clear();
    m_unreadable.clear();
    m_pending.clear();
    m_ordered.clear();
    m_findings.clear();
    m_table_count = 0;
    m_record_count = 0;
    if (!QFileInfo(path).isDir())
    {
        error = QStringLiteral("'%1' is not a folder").arg(path);
        return false;
    }
    if (!KOR_TABLE_IO::is_database(error, path))
        return false;
    if (QFileInfo::exists(QDir(path).filePath(KOR_FILE_COMMIT::journal_name())))
        add(QString(), QString(), QString(),
            QStringLiteral(
                "a change was interrupted and is not complete (%1): files may be partly old, partly "
                "new until the database is connected for editing")
                .arg(KOR_FILE_COMMIT::journal_name()));

    read_schemas(path);
    check_relationships();

    QStringList ordered;
    QSet<QString> visited;
    for (const QString& table : m_schema.table_schemas().keys())
        order(table, visited, ordered);
    m_table_count = ordered.size();
    for (int i = 0; i < ordered.size(); ++i)
    {
        if (progress)
            progress(ordered.at(i), i, ordered.size());
        check_table(path, *m_schema.table_schema(ordered.at(i)));
    }
    // References within a cycle of tables, checked once all were read.
    for (auto it = m_pending.constBegin(); it != m_pending.constEnd(); ++it)
    {
        const auto values = m_target_values.constFind(it.key());
        if (values == m_target_values.constEnd())
            continue; // its table could not be read, which is a finding already
        for (const PENDING& pending : it.value())
            if (!values->contains(pending.value))
                add(pending.place.table, pending.place.key, pending.place.field,
                    missing_reference(pending.value, it.key()), pending.record, pending.column);
    }

    std::sort(m_ordered.begin(), m_ordered.end(), [](const ORDERED_FINDING& a, const ORDERED_FINDING& b) {
        if (a.finding.table != b.finding.table)
            return a.finding.table < b.finding.table;
        if (a.record != b.record)
            return a.record < b.record;
        if (a.column != b.column)
            return a.column < b.column;
        return a.sequence < b.sequence;
    });
    for (const ORDERED_FINDING& item : qAsConst(m_ordered))
        m_findings.append(item.finding);
    m_ordered.clear();
    m_target_values.clear();
    return true;
}

void DB_VALIDATOR::read_schemas(const QString& path)
{
    for (const QString& name : KOR_TABLE_IO::schema_table_names(path))
    {
        QString error;
        std::unique_ptr<KOR_TABLE_SCHEMA> schema;
        if (!KOR_TABLE_IO::read_schema_file(error, KOR_TABLE_IO::schema_file_path(path, name), schema))
        {
            add(name, QString(), QString(), error);
            m_unreadable.insert(name);
            continue;
        }
        if (schema->get_table_name() != name)
        {
            add(name, QString(), QString(),
                QStringLiteral("the schema file describes table '%1'").arg(schema->get_table_name()));
            m_unreadable.insert(name);
            continue;
        }
        QStringList problems;
        if (!schema->is_valid(problems, false))
            for (const QString& problem : qAsConst(problems))
                add(name, QString(), QString(), QStringLiteral("schema: ") + problem);
        if (!m_schema.add_table_schema(schema.get()))
        {
            add(name, QString(), QString(),
                QStringLiteral(
                    "another table has the same name but for case; the engine refuses the database"));
            m_unreadable.insert(name);
            continue;
        }
        schema.release();
    }
    m_schema.rebuild_relations();
    for (const QString& table : KOR_TABLE_IO::data_table_names(path))
        if (!m_schema.table_schema(table) && !m_unreadable.contains(table))
            add(table, QString(), QString(),
                QStringLiteral("the table file has no schema; the engine ignores it"));
}

void DB_VALIDATOR::check_relationships()
{
    for (const KOR_TABLE_SCHEMA* schema : m_schema.table_schemas())
    {
        const QString& table = schema->get_table_name();
        const QList<QString>& columns = schema->column_ordering();
        for (int column = 0; column < columns.size(); ++column)
        {
            const KOR_FIELD_SCHEMA* field = schema->field_schema_by_name(columns.at(column));
            if (!field || field->source_table().isEmpty())
                continue;
            const KOR_TABLE_SCHEMA* foreign = m_schema.table_schema(field->source_table());
            if (!foreign)
            {
                if (!m_unreadable.contains(field->source_table()))
                    add(table, QString(), field->field_name(),
                        QStringLiteral("refers to the unknown table '%1'").arg(field->source_table()), -1,
                        column);
                continue;
            }
            if (field->dependency())
            {
                const KOR_FIELD_SCHEMA* target = foreign_field(m_schema, *field);
                if (target)
                    m_targets.insert(target_name(foreign->get_table_name(), target->field_name()));
                else if (!field->dependency()->second.isEmpty())
                    add(table, QString(), field->field_name(),
                        QStringLiteral("refers to the unknown field '%1.%2'")
                            .arg(field->source_table(), field->dependency()->second),
                        -1, column);
                else
                    add(table, QString(), field->field_name(),
                        QStringLiteral("refers to table '%1', which has no key field")
                            .arg(field->source_table()),
                        -1, column);
            }
            for (const QString& lookup : field->lookup_fields())
                if (!foreign->field_schema_by_name(lookup))
                    add(table, QString(), field->field_name(),
                        QStringLiteral("looks up the unknown field '%1.%2'")
                            .arg(field->source_table(), lookup),
                        -1, column);
        }
    }
}

void DB_VALIDATOR::order(const QString& table, QSet<QString>& visited, QStringList& ordered) const
{
    if (visited.contains(table))
        return;
    visited.insert(table);
    const KOR_TABLE_SCHEMA* schema = m_schema.table_schema(table);
    if (!schema)
        return;
    for (const QString& name : schema->column_ordering())
    {
        const KOR_FIELD_SCHEMA* field = schema->field_schema_by_name(name);
        if (field && field->dependency() && m_schema.table_schema(field->source_table()))
            order(field->source_table(), visited, ordered);
    }
    ordered.append(table);
}

QString DB_VALIDATOR::missing_reference(const QString& value, const QString& target) const
{
    const int dot = target.indexOf(QLatin1Char('.'));
    const QString table = target.left(dot);
    const QString field = target.mid(dot + 1);
    const KOR_TABLE_SCHEMA* schema = m_schema.table_schema(table);
    if (schema && schema->primary_key_fields() == QList<QString>{field})
        return QStringLiteral("'%1' names no record of table '%2'").arg(shortened(value), table);
    return QStringLiteral("'%1' is in no record of table '%2' (field '%3')")
        .arg(shortened(value), table, field);
}

void DB_VALIDATOR::check_table(const QString& path, const KOR_TABLE_SCHEMA& schema)
{
    const QString& table = schema.get_table_name();
    KOR_TABLE_DATA data(&schema);
    QString error;
    if (!KOR_TABLE_IO::read_table_file(error, KOR_TABLE_IO::table_file_path(path, table), schema, data))
    {
        add(table, QString(), QString(), error);
        m_unreadable.insert(table);
        return;
    }
    m_record_count += data.record_count();

    struct COLUMN
    {
        const KOR_FIELD_SCHEMA* schema;
        QString name;
        int slot;
        QString target; // "table.field" of a foreign key
        QStringList fixed;
    };
    QList<QString> by_name = schema.column_ordering();
    std::sort(by_name.begin(), by_name.end(), [](const QString& a, const QString& b) {
        return CASE_INSENSITIVE_COMPARE_STRING::compare(a, b) < 0;
    });
    std::vector<COLUMN> columns;
    for (const QString& name : schema.column_ordering())
    {
        COLUMN column{schema.field_schema_by_name(name), name, int(by_name.indexOf(name)), QString(), {}};
        if (const KOR_FIELD_SCHEMA* target = foreign_field(m_schema, *column.schema))
            column.target = target_name(target->table_name(), target->field_name());
        column.fixed = QStringList(column.schema->fixed_column_values().begin(),
                                   column.schema->fixed_column_values().end());
        column.fixed.sort();
        columns.push_back(column);
    }

    const KOR_RECORD_MAP& records = data.records();
    const auto value_of = [&](const KOR_RECORD_DATA* record, const COLUMN& column) -> const KOR_FIELD_DATA* {
        const KOR_FIELD_DATA_MAP& fields = record->field_map();
        if (fields.size() == int(columns.size()) && fields.at(column.slot)->field_schema() == column.schema)
            return fields.at(column.slot);
        return record->get_field_data(column.name);
    };
    // The values other tables' foreign keys are checked against.
    for (const COLUMN& column : columns)
    {
        const QString name = target_name(table, column.name);
        if (!m_targets.contains(name))
            continue;
        QSet<QString>& values = m_target_values[name];
        values.reserve(records.size());
        for (const KOR_RECORD_DATA* record : records)
            if (const KOR_FIELD_DATA* field = value_of(record, column))
                values.insert(field->value_text());
    }

    for (int row = 0; row < records.size(); ++row)
    {
        const KOR_RECORD_DATA* record = records.at(row);
        const QString& key = records.key_at(row);
        for (int index = 0; index < int(columns.size()); ++index)
        {
            const COLUMN& column = columns[size_t(index)];
            const KOR_FIELD_DATA* field = value_of(record, column);
            const QString text = field ? field->value_text() : QString();
            if (text.isEmpty())
            {
                if (column.schema->is_required())
                    add(table, key, column.name, QStringLiteral("is required but empty"), row, index);
                continue;
            }
            if (!column.fixed.isEmpty() && !column.schema->fixed_column_values().contains(text))
                add(table, key, column.name,
                    QStringLiteral("'%1' is not one of its fixed values (%2)")
                        .arg(shortened(text), shortened(column.fixed.join(QStringLiteral(", ")))),
                    row, index);
            if (column.schema->field_type() == KFT_TEXT && column.schema->max_length() >= 0 &&
                text.size() > column.schema->max_length())
                add(table, key, column.name,
                    QStringLiteral("is %1 characters long; at most %2 are allowed")
                        .arg(text.size())
                        .arg(column.schema->max_length()),
                    row, index);
            if (column.target.isEmpty() ||
                m_unreadable.contains(column.target.section(QLatin1Char('.'), 0, 0)))
                continue;
            const auto values = m_target_values.constFind(column.target);
            if (values == m_target_values.constEnd())
                m_pending[column.target].append(
                    PENDING{DB_FINDING{table, key, column.name, QString()}, text, row, index});
            else if (!values->contains(text))
                add(table, key, column.name, missing_reference(text, column.target), row, index);
        }
    }
}
