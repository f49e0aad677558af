#include "csv_table_reader.h"

#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "veld_csv_line_splitter.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

CSV_TABLE_READER::CSV_TABLE_READER(const QString& directory, const KOR_TABLE_SCHEMA* table_schema)
    : m_directory(directory), m_table_schema(table_schema)
{
    // Project paths end in '/': the file name is joined with one of its own.
    while (m_directory.size() > 1 && m_directory.endsWith(QLatin1Char('/')))
        m_directory.chop(1);
}

QString CSV_TABLE_READER::file_path() const
{
    return m_directory + QLatin1Char('/') + (m_table_schema ? m_table_schema->get_table_name() : QString()) +
           QStringLiteral(".csv");
}

bool CSV_TABLE_READER::read()
{
    m_success = false;
    m_messages.clear();
    m_key_values.clear();
    m_field_columns.clear();
    m_header_count = 0;
    if (!m_table_schema)
    {
        m_messages.append(QStringLiteral("Invalid schema"));
        return false;
    }
    m_primary_key_fields = m_table_schema->primary_key_fields();

    const QString path = file_path();
    QFile file(path);
    if (!QFileInfo::exists(path))
    {
        m_messages.append(QStringLiteral("Could not find '") + path + QLatin1Char('\''));
        return false;
    }
    if (!file.open(QIODevice::ReadOnly))
    {
        m_messages.append(QStringLiteral("Could not open '") + path + QLatin1Char('\''));
        return false;
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    const QString header = stream.readLine();
    if (header.isNull())
    {
        m_messages.append(QStringLiteral("No data in '") + path + QLatin1Char('\''));
        return false;
    }
    if (!read_header(header))
        return false;
    int number = 1;
    QString line;
    while (stream.readLineInto(&line))
        read_record(line, ++number);
    m_success = true;
    return true;
}

bool CSV_TABLE_READER::read_header(const QString& line)
{
    const QStringList names = VELD_CSV_LINE_SPLITTER::split(line);
    m_header_count = names.size();
    for (int column = 0; column < names.size(); ++column)
    {
        const KOR_FIELD_SCHEMA* field = m_table_schema->field_schema_by_name(names[column]);
        const QString name = field ? field->field_name() : names[column];
        if (!m_field_columns.contains(name))
            m_field_columns.insert(name, column);
    }
    for (const QString& key_field : qAsConst(m_primary_key_fields))
    {
        if (!m_field_columns.contains(key_field))
        {
            m_messages.append(
                QStringLiteral("Required fields for table are missing from the imported csv file."));
            return false;
        }
    }
    return true;
}

void CSV_TABLE_READER::read_record(const QString& line, int number)
{
    const QStringList values = VELD_CSV_LINE_SPLITTER::split(line);
    const QString at_line = QString::number(number);
    if (values.size() != m_header_count)
    {
        m_messages.append(QStringLiteral("WARNING! Number of values on line ") + at_line +
                          QStringLiteral(" does not match number of headers."));
        return;
    }
    QString key;
    for (const QString& key_field : qAsConst(m_primary_key_fields))
    {
        const QString& value = values[m_field_columns.value(key_field)];
        const KOR_FIELD_SCHEMA* field = m_table_schema->field_schema_by_name(key_field);
        if (value.isEmpty() && field && field->is_required())
        {
            m_messages.append(QStringLiteral("Required field '") + key_field +
                              QStringLiteral("' missing at line ") + at_line + QLatin1Char('.'));
            return;
        }
        key += value;
    }
    if (key.isEmpty())
    {
        m_messages.append(QStringLiteral("Key at line ") + at_line + QStringLiteral(" is empty."));
        return;
    }
    QMap<QString, QString>& record = m_key_values[key];
    for (auto column = m_field_columns.constBegin(); column != m_field_columns.constEnd(); ++column)
        record.insert(column.key(), values[column.value()]);
}
