#include "table_launcher_model.h"

#include "kor_database_schema.h"
#include "orbin_settings.h"
#include "veld_data.h"

namespace
{
const char* const pinned_tables_path = "Northfold\\Quill\\Veld\\PinnedTables";
}

TABLE_LAUNCHER_MODEL::TABLE_LAUNCHER_MODEL(VELD_DATA* session, QObject* parent)
    : QAbstractTableModel(parent), m_session(session)
{
}

int TABLE_LAUNCHER_MODEL::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() || !m_session)
        return 0;
    const KOR_DATABASE_SCHEMA* schema = m_session->get_database_schema();
    if (!schema)
        return 0;
    // The row list follows the schema at every fill; bounded all the same, so
    // a table added before the next refresh never indexes past the rows.
    return qMin(schema->table_count(), m_rows.size());
}

int TABLE_LAUNCHER_MODEL::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant TABLE_LAUNCHER_MODEL::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return QVariant();
    if (index.column() == 1)
        return m_rows[index.row()].second;
    if (index.column() == 0 && role == Qt::DisplayRole)
        return m_rows[index.row()].first;
    return QVariant();
}

void TABLE_LAUNCHER_MODEL::load_rows()
{
    // Rows are rebuilt, never appended to: a second connection would
    // otherwise list every table twice.
    m_rows.clear();
    const KOR_DATABASE_SCHEMA* schema = m_session ? m_session->get_database_schema() : nullptr;
    if (!schema)
        return;
    const QSet<QString> pinned = read_pinned();
    const auto& tables = schema->table_schemas();
    m_rows.reserve(tables.size());
    for (auto it = tables.cbegin(); it != tables.cend(); ++it)
        m_rows.append({it.key(), pinned.contains(it.key())});
}

void TABLE_LAUNCHER_MODEL::fill()
{
    beginResetModel();
    load_rows();
    endResetModel();
}

void TABLE_LAUNCHER_MODEL::refresh()
{
    // Pins are written at each toggle, so reading them back keeps them.
    beginResetModel();
    load_rows();
    endResetModel();
}

QString TABLE_LAUNCHER_MODEL::table_key(int row) const
{
    return row >= 0 && row < m_rows.size() ? m_rows[row].first : QString();
}

bool TABLE_LAUNCHER_MODEL::is_pinned(int row) const
{
    return row >= 0 && row < m_rows.size() && m_rows[row].second;
}

void TABLE_LAUNCHER_MODEL::toggle_pinned(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    m_rows[row].second = !m_rows[row].second;
    emit dataChanged(index(row, 0), index(row, 1));
}

QStringList TABLE_LAUNCHER_MODEL::pinned_keys() const
{
    QStringList keys;
    for (const auto& row : m_rows)
    {
        if (row.second)
            keys << row.first;
    }
    return keys;
}

void TABLE_LAUNCHER_MODEL::write_pinned() const
{
    ORBIN_SETTINGS settings(QString::fromLatin1(pinned_tables_path));
    settings.remove(QString());
    const QStringList keys = pinned_keys();
    settings.beginWriteArray(QStringLiteral("TableKeys"), keys.size());
    for (int i = 0; i < keys.size(); ++i)
    {
        settings.setArrayIndex(i);
        settings.setValue(QStringLiteral("key"), keys[i]);
    }
    settings.endArray();
}

QSet<QString> TABLE_LAUNCHER_MODEL::read_pinned()
{
    ORBIN_SETTINGS settings(QString::fromLatin1(pinned_tables_path));
    QSet<QString> keys;
    const int size = settings.beginReadArray(QStringLiteral("TableKeys"));
    for (int i = 0; i < size; ++i)
    {
        settings.setArrayIndex(i);
        keys.insert(settings.value(QStringLiteral("key")).toString());
    }
    settings.endArray();
    return keys;
}

bool TABLE_LAUNCHER_MODEL::row_less_than(int left_row, int right_row) const
{
    const bool left_pinned = is_pinned(left_row);
    const bool right_pinned = is_pinned(right_row);
    if (left_pinned != right_pinned)
        return left_pinned;
    return table_key(left_row).compare(table_key(right_row), Qt::CaseInsensitive) < 0;
}
