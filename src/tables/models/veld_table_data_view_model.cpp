#include "veld_table_data_view_model.h"

#include "case_insensitive_compare_string.h"
#include "kor_database_schema.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "veld_data.h"
#include "veld_field_relationship_text.h"
#include "veld_field_value_validator.h"
#include "veld_options.h"
#include "veld_table_data_view_sort_model.h"
#include "veld_table_model_questions.h"

#include <QColor>
#include <QItemSelectionModel>

const QString VELD_TABLE_DATA_VIEW_MODEL::new_record_key = QStringLiteral("@@NEW_RECORD@@");

namespace
{
const QColor deleted_row_colour(255, 40, 40);
} // namespace

VELD_TABLE_DATA_VIEW_MODEL::VELD_TABLE_DATA_VIEW_MODEL(const QString& table_key,
                                                       bool right_aligned_row_numbers, QObject* parent)
    : QAbstractTableModel(parent), m_table_key(table_key),
      m_right_aligned_row_numbers(right_aligned_row_numbers)
{
}

VELD_TABLE_DATA_VIEW_MODEL::VELD_TABLE_DATA_VIEW_MODEL(const QString& table_key, VELD_DATA* session,
                                                       bool right_aligned_row_numbers, QObject* parent)
    : VELD_TABLE_DATA_VIEW_MODEL(table_key, right_aligned_row_numbers, parent)
{
    m_session = session;
}

VELD_TABLE_DATA_VIEW_MODEL::VELD_TABLE_DATA_VIEW_MODEL(const QString& table_key,
                                                       KOR_XML_QUERY_INTERFACE* query_interface,
                                                       bool right_aligned_row_numbers, QObject* parent)
    : VELD_TABLE_DATA_VIEW_MODEL(table_key, right_aligned_row_numbers, parent)
{
    m_query_interface = query_interface;
}

VELD_TABLE_DATA_VIEW_MODEL::~VELD_TABLE_DATA_VIEW_MODEL() = default;

KOR_XML_QUERY_INTERFACE* VELD_TABLE_DATA_VIEW_MODEL::query_interface() const
{
    return m_session ? m_session->query_interface() : m_query_interface;
}

// ---------------------------------------------------------------------------
// Rows and their marks

void VELD_TABLE_DATA_VIEW_MODEL::set_flag(int row, quint8 flag, bool on)
{
    if (!valid_row(row))
        return;
    quint8& flags = m_row_flags[size_t(row)];
    flags = on ? quint8(flags | flag) : quint8(flags & ~flag);
}

int VELD_TABLE_DATA_VIEW_MODEL::count_rows_with(quint8 flag) const
{
    int count = 0;
    for (quint8 flags : m_row_flags)
        if (flags & flag)
            ++count;
    return count;
}

bool VELD_TABLE_DATA_VIEW_MODEL::has_pending_changes() const
{
    for (quint8 flags : m_row_flags)
        if (flags & (NEW_ROW | DELETED_ROW | EDITED_ROW))
            return true;
    return false;
}

const EDITED_RECORD* VELD_TABLE_DATA_VIEW_MODEL::edited_record(int row) const
{
    return valid_row(row) ? m_rows[row] : nullptr;
}

const KOR_RECORD_DATA* VELD_TABLE_DATA_VIEW_MODEL::record_of_row(int row) const
{
    return valid_row(row) ? m_rows[row]->value_record() : nullptr;
}

QString VELD_TABLE_DATA_VIEW_MODEL::record_key(int row) const
{
    const KOR_RECORD_DATA* record = record_of_row(row);
    return record ? record->key() : QString();
}

QUuid VELD_TABLE_DATA_VIEW_MODEL::record_uuid(int row) const
{
    const KOR_RECORD_DATA* record = record_of_row(row);
    return record ? record->uuid() : QUuid();
}

int VELD_TABLE_DATA_VIEW_MODEL::row_of_key(const QString& key) const
{
    for (int row = 0; row < m_rows.size(); ++row)
        if (record_key(row) == key)
            return row;
    return -1;
}

int VELD_TABLE_DATA_VIEW_MODEL::row_of_uuid(const QUuid& uuid) const
{
    for (int row = 0; row < m_rows.size(); ++row)
        if (record_uuid(row) == uuid)
            return row;
    return -1;
}

void VELD_TABLE_DATA_VIEW_MODEL::ensure_known_keys() const
{
    if (m_known_keys_built)
        return;
    m_known_keys.reserve(int(m_table_rows.size()));
    for (const EDITED_RECORD& row : m_table_rows)
        if (const KOR_RECORD_DATA* record = row.value_record())
            m_known_keys.insert(record->key());
    m_known_keys_built = true;
}

bool VELD_TABLE_DATA_VIEW_MODEL::key_in_use(const QString& key) const
{
    ensure_known_keys();
    return m_known_keys.contains(key) && !m_released_keys.contains(key);
}

void VELD_TABLE_DATA_VIEW_MODEL::lock_row(int row)
{
    if (valid_row(row))
        m_rows[row]->lock();
}

void VELD_TABLE_DATA_VIEW_MODEL::toggle_record(int row)
{
    const QUuid uuid = record_uuid(row);
    if (uuid.isNull())
        return;
    if (!m_toggled_records.remove(uuid))
        m_toggled_records.insert(uuid);
    emit headerDataChanged(Qt::Vertical, row, row);
}

void VELD_TABLE_DATA_VIEW_MODEL::set_toggled_records(const QSet<QUuid>& records)
{
    m_toggled_records = records;
    if (!m_rows.isEmpty())
        emit headerDataChanged(Qt::Vertical, 0, m_rows.size() - 1);
}

// ---------------------------------------------------------------------------
// Fields and columns

const KOR_FIELD_SCHEMA* VELD_TABLE_DATA_VIEW_MODEL::field_of_column(int column) const
{
    if (column < 0 || column >= m_column_fields.size())
        return nullptr;
    return m_column_fields[column];
}

const KOR_FIELD_SCHEMA* VELD_TABLE_DATA_VIEW_MODEL::field_of_index(const QModelIndex& index) const
{
    if (!m_table_schema || !index.isValid())
        return nullptr;
    const QString name = headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString();
    return m_table_schema->field_schema_by_name(name);
}

QString VELD_TABLE_DATA_VIEW_MODEL::field_description(const QString& field) const
{
    const auto pending = m_field_descriptions.constFind(field);
    if (pending != m_field_descriptions.constEnd())
        return pending.value();
    const KOR_FIELD_SCHEMA* schema = m_table_schema ? m_table_schema->field_schema_by_name(field) : nullptr;
    return schema ? schema->description() : QString();
}

void VELD_TABLE_DATA_VIEW_MODEL::set_field_description(const QString& field, const QString& text)
{
    m_field_descriptions.insert(field, text);
    const int column = m_column_names.indexOf(field);
    if (column >= 0)
        emit headerDataChanged(Qt::Horizontal, column, column);
}

void VELD_TABLE_DATA_VIEW_MODEL::cache_columns()
{
    m_column_names.clear();
    m_column_fields.clear();
    m_field_slots.clear();
    if (!m_table_schema)
        return;
    m_column_names = m_table_schema->column_ordering();
    m_column_fields.reserve(m_column_names.size());
    m_field_slots.fill(-1, m_column_names.size());
    for (const QString& name : qAsConst(m_column_names))
        m_column_fields.append(m_table_schema->field_schema_by_name(name));

    // Records of one table keep their fields in the same order, so the place
    // of a field in the first record is tried before a search by name.
    const KOR_RECORD_DATA* sample = m_rows.isEmpty() ? nullptr : m_rows.first()->value_record();
    if (!sample)
        return;
    const KOR_FIELD_DATA_MAP& fields = sample->field_map();
    for (int slot = 0; slot < fields.size(); ++slot)
    {
        const int column = m_column_fields.indexOf(fields.at(slot)->field_schema());
        if (column >= 0)
            m_field_slots[column] = slot;
    }
}

const KOR_FIELD_DATA* VELD_TABLE_DATA_VIEW_MODEL::field_data_at(const KOR_RECORD_DATA* record,
                                                                int column) const
{
    if (!record || column < 0 || column >= m_column_names.size())
        return nullptr;
    const KOR_FIELD_DATA_MAP& fields = record->field_map();
    const int slot = m_field_slots[column];
    if (slot >= 0 && slot < fields.size())
    {
        const KOR_FIELD_DATA* field = fields.at(slot);
        if (field->field_schema() == m_column_fields[column] && m_column_fields[column])
            return field;
    }
    return record->get_field_data(m_column_names[column]);
}

QVariant VELD_TABLE_DATA_VIEW_MODEL::stored_value(int row, int column) const
{
    const KOR_FIELD_DATA* field = field_data_at(m_rows[row]->value_record(), column);
    return field ? field->value() : QVariant();
}

// ---------------------------------------------------------------------------
// The item model

QModelIndex VELD_TABLE_DATA_VIEW_MODEL::index(int row, int column, const QModelIndex& parent) const
{
    if (parent.isValid() || !valid_row(row) || column < 0 || column >= m_column_names.size())
        return QModelIndex();
    return createIndex(row, column);
}

int VELD_TABLE_DATA_VIEW_MODEL::rowCount(const QModelIndex& parent) const
{
    // The rows themselves, not a count taken from the engine's table: that
    // table may have changed since the load.
    return parent.isValid() ? 0 : m_rows.size();
}

int VELD_TABLE_DATA_VIEW_MODEL::columnCount(const QModelIndex& parent) const
{
    if (parent.isValid() || !m_table_schema)
        return 0;
    return m_table_schema->field_count();
}

QVariant VELD_TABLE_DATA_VIEW_MODEL::display_value(int row, int column) const
{
    const QVariant stored = stored_value(row, column);
    const KOR_FIELD_SCHEMA* field = field_of_column(column);
    // Only fields with a source table ever fill their column's cache.
    if (!field || field->source_table().isEmpty())
        return stored;
    const QString text = stored.toString();
    QHash<QString, QVariant>& cache = m_lookup_cache[column];
    const auto hit = cache.constFind(text);
    if (hit != cache.constEnd())
        return hit.value();
    if (text.isEmpty())
        return stored;
    QString error;
    QString lookup;
    if (KOR_XML_QUERY_INTERFACE* query = query_interface())
        query->get_field_lookup_value(error, lookup, field, stored);
    const QVariant shown(lookup);
    cache.insert(text, shown);
    return shown;
}

QVariant VELD_TABLE_DATA_VIEW_MODEL::decoration_value(const QModelIndex& index) const
{
    const int row = index.row();
    QColor colour;
    if (is_any_deleted_row(row))
        colour = deleted_row_colour;
    else if (has_flag(row, NEW_COLOURED_ROW))
        colour = VELD_OPTIONS::new_cell_colour();
    else if (m_altered_cells.contains(cell_key(row, index.column())))
        colour = VELD_OPTIONS::altered_cell_colour();
    else
        return QVariant();

    if (m_selection_model)
    {
        const QModelIndex shown = m_proxy ? m_proxy->mapFromSource(index) : index;
        if (shown.isValid() && shown.model() == m_selection_model->model() &&
            m_selection_model->isSelected(shown))
            colour = colour.darker(200);
    }
    return colour;
}

QVariant VELD_TABLE_DATA_VIEW_MODEL::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.model() != this || !valid_row(index.row()) || index.column() < 0 ||
        index.column() >= columnCount())
        return QVariant();
    const int row = index.row();
    switch (role)
    {
    case Qt::DisplayRole:
        if (m_display_lookups)
            return display_value(row, index.column());
        if (is_any_deleted_row(row))
            return QVariant();
        return stored_value(row, index.column());
    case Qt::EditRole:
        if (is_any_deleted_row(row))
            return QVariant();
        return stored_value(row, index.column());
    case Qt::DecorationRole:
        return decoration_value(index);
    default:
        return QVariant();
    }
}

QVariant VELD_TABLE_DATA_VIEW_MODEL::row_header_text(int row) const
{
    int shown = row;
    if (m_proxy)
    {
        const QModelIndex proxy_index = m_proxy->mapFromSource(index(row, 0));
        if (proxy_index.isValid())
            shown = proxy_index.row();
    }
    QString text = QString::number(shown + 1);
    if (is_new_row(row))
        text += QStringLiteral(" new");
    else if (is_any_deleted_row(row))
        text += QStringLiteral(" del");
    else if (is_edited_row(row))
        text += QStringLiteral(" * ");
    return text;
}

QVariant VELD_TABLE_DATA_VIEW_MODEL::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal)
    {
        if (section < 0 || section >= m_column_names.size())
            return QVariant();
        if (role == Qt::DisplayRole)
            return m_column_names[section];
        if (role == Qt::ToolTipRole)
        {
            const KOR_FIELD_SCHEMA* field = m_column_fields[section];
            if (!field)
                return QVariant();
            return VELD_FIELD_RELATIONSHIP_TEXT::build(*field, field_description(field->field_name()));
        }
        return QVariant();
    }
    if (!valid_row(section))
        return QVariant();
    if (role == Qt::DisplayRole)
        return row_header_text(section);
    if (role == Qt::TextAlignmentRole)
        return int((m_right_aligned_row_numbers ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    return QVariant();
}

Qt::ItemFlags VELD_TABLE_DATA_VIEW_MODEL::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (index.column() < m_frozen_column_count)
        return Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable;
}

void VELD_TABLE_DATA_VIEW_MODEL::set_frozen_columns(int frozen_column_count)
{
    m_frozen_column_count = frozen_column_count;
}

void VELD_TABLE_DATA_VIEW_MODEL::set_display_lookups(bool display_lookups)
{
    if (display_lookups == m_display_lookups)
        return;
    beginResetModel();
    m_display_lookups = display_lookups;
    endResetModel();
}

void VELD_TABLE_DATA_VIEW_MODEL::set_proxy(VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy)
{
    m_proxy = proxy;
}

VELD_TABLE_DATA_VIEW_SORT_MODEL* VELD_TABLE_DATA_VIEW_MODEL::proxy() const
{
    return m_proxy;
}

void VELD_TABLE_DATA_VIEW_MODEL::set_selection_model(QItemSelectionModel* selection_model)
{
    m_selection_model = selection_model;
}

void VELD_TABLE_DATA_VIEW_MODEL::set_questions(std::unique_ptr<VELD_TABLE_MODEL_QUESTIONS> questions)
{
    m_questions = std::move(questions);
}

void VELD_TABLE_DATA_VIEW_MODEL::begin_mass_operation()
{
    m_cascade.begin_mass_operation();
}

void VELD_TABLE_DATA_VIEW_MODEL::end_mass_operation()
{
    m_cascade.end_mass_operation();
}

// ---------------------------------------------------------------------------
// Loading

void VELD_TABLE_DATA_VIEW_MODEL::clear_all()
{
    m_rows.clear();
    m_table_rows.clear();
    m_new_rows.clear();
    m_row_flags.clear();
    m_edit_list.clear();
    m_altered_cells.clear();
    m_lookup_cache.clear();
    m_released_keys.clear();
    m_field_descriptions.clear();
    m_known_keys.clear();
    m_known_keys_built = false;
}

void VELD_TABLE_DATA_VIEW_MODEL::fill_rows(bool keep_edits)
{
    const int old_table_rows = int(m_table_rows.size());

    // What the user did to records of the table, by record, so that it lands
    // on the same records whatever their new row numbers: the table may have
    // gained or lost records, or records changed key and moved, since the
    // last load.
    struct KEPT
    {
        EDITED_RECORD row;
        quint8 flags;
        QList<int> altered_columns;
    };
    QHash<QUuid, int> kept_index;
    std::vector<KEPT> kept;
    QHash<QUuid, QList<int>> altered_by_record;
    std::vector<QUuid> edit_records;
    std::vector<int> new_row_flags;
    QList<QPair<int, int>> new_row_altered;
    if (keep_edits)
    {
        for (quint64 cell : qAsConst(m_altered_cells))
        {
            const int row = int(cell >> 32);
            const int column = int(cell & 0xffffffffu);
            if (row < old_table_rows)
                altered_by_record[m_table_rows[size_t(row)].uuid()].append(column);
            else
                new_row_altered.append(qMakePair(row - old_table_rows, column));
        }
        for (int row = 0; row < old_table_rows; ++row)
        {
            EDITED_RECORD& record_row = m_table_rows[size_t(row)];
            // Colours of local changes come again from the load.
            const quint8 flags = m_row_flags[size_t(row)] & quint8(~NEW_COLOURED_ROW);
            const QUuid uuid = record_row.uuid();
            QList<int> altered = altered_by_record.value(uuid);
            if (flags == 0 && record_row.state() == EDITED_RECORD::UNCHANGED && altered.isEmpty())
                continue;
            kept_index.insert(uuid, int(kept.size()));
            kept.push_back(KEPT{std::move(record_row), flags, altered});
        }
        for (const EDIT_ENTRY& entry : m_edit_list)
            edit_records.push_back(entry.row < old_table_rows ? m_table_rows[size_t(entry.row)].uuid()
                                                              : QUuid());
        for (int i = 0; i < int(m_new_rows.size()); ++i)
            new_row_flags.push_back(m_row_flags[size_t(old_table_rows + i)]);
    }
    else
    {
        m_new_rows.clear();
    }

    m_table_rows.clear();
    m_rows.clear();
    m_row_flags.clear();
    m_altered_cells.clear();

    const KOR_RECORD_MAP& records = m_table_data->records();
    m_table_rows.reserve(size_t(records.size()));
    QHash<QUuid, int> new_row_of_kept;
    for (auto it = records.begin(); it != records.end(); ++it)
    {
        const KOR_RECORD_DATA* record = it.value();
        const auto found = kept.empty() ? kept_index.constEnd() : kept_index.constFind(record->uuid());
        if (found != kept_index.constEnd())
        {
            EDITED_RECORD& row = kept[size_t(found.value())].row;
            row.set_original(record);
            if (row.state() != EDITED_RECORD::EDITED)
                row.set_key(it.key());
            new_row_of_kept.insert(record->uuid(), int(m_table_rows.size()));
            m_table_rows.push_back(std::move(row));
        }
        else
        {
            m_table_rows.emplace_back(it.key(), record);
        }
    }
    const int table_rows = int(m_table_rows.size());
    m_rows.reserve(table_rows + int(m_new_rows.size()));
    for (EDITED_RECORD& row : m_table_rows)
        m_rows.append(&row);
    for (const std::unique_ptr<EDITED_RECORD>& row : m_new_rows)
        m_rows.append(row.get());
    m_row_flags.assign(size_t(m_rows.size()), 0);

    if (!keep_edits)
        return;
    for (auto it = new_row_of_kept.constBegin(); it != new_row_of_kept.constEnd(); ++it)
    {
        const KEPT& entry = kept[size_t(kept_index.value(it.key()))];
        m_row_flags[size_t(it.value())] = entry.flags;
        for (int column : entry.altered_columns)
            m_altered_cells.insert(cell_key(it.value(), column));
    }
    for (int i = 0; i < int(new_row_flags.size()); ++i)
        m_row_flags[size_t(table_rows + i)] = quint8(new_row_flags[size_t(i)]);
    for (const QPair<int, int>& cell : qAsConst(new_row_altered))
        m_altered_cells.insert(cell_key(table_rows + cell.first, cell.second));

    // Edits of records that are gone can no longer be sent.
    std::vector<EDIT_ENTRY> edits;
    for (size_t i = 0; i < m_edit_list.size(); ++i)
    {
        EDIT_ENTRY& entry = m_edit_list[i];
        if (entry.row >= old_table_rows)
            entry.row = entry.row - old_table_rows + table_rows;
        else if (new_row_of_kept.contains(edit_records[i]))
            entry.row = new_row_of_kept.value(edit_records[i]);
        else
            continue;
        edits.push_back(std::move(entry));
    }
    m_edit_list = std::move(edits);
}

void VELD_TABLE_DATA_VIEW_MODEL::mark_local_changes()
{
    KOR_XML_QUERY_INTERFACE* query = query_interface();
    if (!query || m_rows.isEmpty())
        return;
    const KOR_CHANGED_FIELDS changes = query->changed_fields(m_table_key);
    if (changes.isEmpty())
        return;
    QHash<QUuid, int> row_of_record;
    row_of_record.reserve(changes.size());
    for (int row = 0; row < int(m_table_rows.size()); ++row)
    {
        const QUuid uuid = m_table_rows[size_t(row)].uuid();
        if (changes.contains(uuid))
            row_of_record.insert(uuid, row);
    }
    for (auto it = changes.constBegin(); it != changes.constEnd(); ++it)
    {
        const auto row = row_of_record.constFind(it.key());
        if (row == row_of_record.constEnd())
            continue;
        for (const QPair<QString, int>& change : it.value())
        {
            if (change.second == 0)
            {
                set_flag(row.value(), NEW_COLOURED_ROW, true);
            }
            else if (change.second == 2)
            {
                const int column = m_column_names.indexOf(change.first);
                if (column >= 0)
                    m_altered_cells.insert(cell_key(row.value(), column));
            }
        }
    }
}

bool VELD_TABLE_DATA_VIEW_MODEL::load(QString& error)
{
    KOR_XML_QUERY_INTERFACE* query = query_interface();
    if (!query)
    {
        error = QStringLiteral("Could not access the main query interface in order to load table '") +
                m_table_key + QLatin1Char('\'');
        return false;
    }
    const KOR_DATABASE_SCHEMA* database_schema = query->get_database_schema();
    const KOR_TABLE_SCHEMA* table_schema =
        database_schema ? database_schema->table_schema(m_table_key) : nullptr;
    QString data_error;
    const KOR_TABLE_DATA* table_data = query->get_table_data(data_error, m_table_key);
    if (!table_schema || !table_data)
    {
        error = !data_error.isEmpty()
                    ? data_error
                    : QStringLiteral("Table '") + m_table_key + QStringLiteral("' was not found");
        return false;
    }
    const bool keep_edits = !m_rows.isEmpty() || !m_new_rows.empty();
    m_table_schema = table_schema;
    m_table_data = table_data;
    fill_rows(keep_edits);
    cache_columns();
    m_lookup_cache = QVector<QHash<QString, QVariant>>(m_column_names.size());
    if (m_known_keys_built)
        for (const EDITED_RECORD& row : m_table_rows)
            m_known_keys.insert(row.value_record()->key());
    mark_local_changes();
    return true;
}

bool VELD_TABLE_DATA_VIEW_MODEL::refresh(bool keep_edits)
{
    beginResetModel();
    if (!keep_edits)
    {
        clear_all();
        m_table_schema = nullptr;
        m_table_data = nullptr;
    }
    QString error;
    const bool loaded = load(error);
    if (!loaded)
    {
        // The rows would point into data the engine no longer vouches for.
        clear_all();
        m_table_schema = nullptr;
        m_table_data = nullptr;
        m_column_names.clear();
        m_column_fields.clear();
        m_field_slots.clear();
    }
    endResetModel();
    if (!error.isEmpty())
        emit statusUpdate(error);
    return loaded;
}

// ---------------------------------------------------------------------------
// Edits

void VELD_TABLE_DATA_VIEW_MODEL::emit_changed_flag()
{
    emit changedFlagUpdate(has_pending_changes());
}

void VELD_TABLE_DATA_VIEW_MODEL::emit_row_changed(int row)
{
    const int columns = columnCount();
    if (columns > 0)
        emit dataChanged(index(row, 0), index(row, columns - 1));
    emit headerDataChanged(Qt::Vertical, row, row);
}

void VELD_TABLE_DATA_VIEW_MODEL::warn_data_invalid(const QString& text)
{
    if (m_questions)
        m_questions->warn_data_invalid(text);
    else
        emit statusUpdate(text);
}

bool VELD_TABLE_DATA_VIEW_MODEL::check_key_and_relationships(int row, const KOR_FIELD_SCHEMA& field,
                                                             const QVariant& new_value,
                                                             const QString& new_text)
{
    KOR_XML_QUERY_INTERFACE* query = query_interface();
    const EDITED_RECORD* edited = m_rows[row];
    const QString key = edited->key();

    if (field.is_primary_key())
    {
        if (new_text.contains(QLatin1Char(' ')))
        {
            warn_data_invalid(QStringLiteral("A primary key field may not contain a space"));
            return false;
        }
        QString composite;
        for (const QString& name : m_table_schema->primary_key_fields())
        {
            if (CASE_INSENSITIVE_COMPARE_STRING::compare(name, field.field_name()) == 0)
            {
                composite += KOR_FIELD_DATA::variant_to_text(new_value);
                continue;
            }
            const KOR_FIELD_DATA* other = edited->field_data(name);
            if (!other)
                return false;
            composite += other->value_text();
        }
        if (composite.isEmpty())
        {
            emit statusUpdate(QStringLiteral("Empty primary keys not allowed, needs to be updated"));
            return false;
        }
        if (key_in_use(composite))
        {
            emit statusUpdate(composite + QStringLiteral(" primary key already exists"));
            return false;
        }
    }

    // Nothing in the database can refer to a record that is not there yet.
    if (!field.dependents().isEmpty() && query && !is_new_row(row) && !is_deleted_new_row(row))
    {
        const QVariant old_value = stored_value(row, m_column_names.indexOf(field.field_name()));
        QString error;
        if (query->any_dependents_using_existing_value(error, m_table_key, &field, old_value))
        {
            if (const QPair<QString, QString>* dependency = field.dependency())
            {
                warn_data_invalid(QStringLiteral("Cannot set data for this field (") + key +
                                  QStringLiteral("): ") + error +
                                  QStringLiteral(" and has a dependency on ") + dependency->first +
                                  QLatin1Char(':') + dependency->second);
                return false;
            }
            const bool update = m_cascade.update_confirmed([&](bool& apply_to_all) {
                QMap<QString, QSet<QString>> references;
                query->dependents_of_field_using_value(references, &field, old_value);
                return m_questions ? m_questions->ask_cascade_update(references, apply_to_all) : false;
            });
            if (!update)
            {
                emit statusUpdate(QStringLiteral("Field not updated as update was cancelled by user"));
                return false;
            }
        }
    }

    if (field.dependency() && query)
    {
        QString error;
        if (!query->dependency_value_exists(error, m_table_key, &field, new_value))
        {
            emit statusUpdate(QStringLiteral("Cannot set data for field (") + key + QStringLiteral(") '") +
                              field.field_name() + QStringLiteral("':") + error);
            return false;
        }
    }
    return true;
}

bool VELD_TABLE_DATA_VIEW_MODEL::write_value(int row, const KOR_FIELD_SCHEMA& field,
                                             const QVariant& new_value)
{
    EDITED_RECORD* edited = m_rows[row];
    ensure_known_keys();
    const QString old_key = edited->value_record()->key();
    if (field.is_primary_key())
        m_known_keys.remove(old_key);
    QString error;
    if (!edited->set_value(field.field_name(), new_value, error))
    {
        if (field.is_primary_key())
            m_known_keys.insert(old_key);
        emit statusUpdate(error);
        return false;
    }
    const QString new_key = edited->value_record()->key();
    m_known_keys.insert(new_key);
    if (edited->state() == EDITED_RECORD::EDITED)
    {
        if (field.is_primary_key())
            edited->set_key(new_key);
        m_edit_list.push_back(EDIT_ENTRY{row, edited->snapshot()});
    }
    return true;
}

bool VELD_TABLE_DATA_VIEW_MODEL::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.model() != this || !valid_row(index.row()) ||
        !m_table_schema)
        return false;
    const int row = index.row();
    EDITED_RECORD* edited = m_rows[row];
    if (!edited->value_record())
        return false;
    const KOR_FIELD_SCHEMA* field = field_of_index(index);
    if (!field)
        return false;
    const QString& field_name = field->field_name();
    const QString key = edited->key();

    const QString text = value.toString();
    if (field->is_required() && text.isEmpty())
    {
        emit statusUpdate(QLatin1Char('\'') + field_name +
                          QStringLiteral("' is required and must not be blank. (") + key + QLatin1Char(')'));
        return true;
    }
    if (text == data(index, Qt::EditRole).toString())
        return true;

    QVariant new_value;
    QString message;
    if (!VELD_FIELD_VALUE_VALIDATOR::validate(field, text, new_value, message))
    {
        if (!message.isEmpty())
            emit statusUpdate(message);
        emit statusUpdate(QLatin1Char('\'') + text + QStringLiteral("' is not a valid value for '") +
                          field_name + QStringLiteral("' (") + key + QLatin1Char(')'));
        return false;
    }

    if (!check_key_and_relationships(row, *field, new_value, text))
        return false;
    // The cascade question runs an event loop; the row must still be the one
    // the edit was meant for.
    if (!valid_row(row) || m_rows[row] != edited)
        return false;
    if (!write_value(row, *field, new_value))
        return false;

    if (edited->state() != EDITED_RECORD::LOCKED && !is_new_row(row))
    {
        set_flag(row, EDITED_ROW, true);
        m_altered_cells.insert(cell_key(row, index.column()));
    }
    emit dataChanged(index, index);
    emit headerDataChanged(Qt::Vertical, row, row);
    emit_changed_flag();
    return true;
}

// ---------------------------------------------------------------------------
// Records

int VELD_TABLE_DATA_VIEW_MODEL::add_record()
{
    if (!m_table_schema || !m_table_data)
        return -1;
    KOR_XML_QUERY_INTERFACE* query = query_interface();
    std::unique_ptr<KOR_RECORD_DATA> record(
        new KOR_RECORD_DATA(m_table_schema, nullptr, QUuid::createUuid()));
    for (const KOR_FIELD_SCHEMA* field : m_table_schema->field_schemas())
    {
        QVariant value = field->default_value();
        // Several pending new rows get the same number: the table's next
        // number does not count rows that are not applied yet.
        if (field->field_type() == KFT_AUTONUMBER)
            value = m_table_data->next_autonumber(field->field_name());
        else if (field->field_type() == KFT_UNIQUE_ID)
            value = qulonglong(query ? query->new_unique_global_id() : 0);
        record->add_field_data(field, value);
    }

    const int row = m_rows.size();
    beginInsertRows(QModelIndex(), row, row);
    m_new_rows.emplace_back(
        new EDITED_RECORD(new_record_key + QString::number(m_new_record_counter++), std::move(record)));
    m_rows.append(m_new_rows.back().get());
    m_row_flags.push_back(NEW_ROW | NEW_COLOURED_ROW);
    endInsertRows();
    emit_changed_flag();
    return row;
}

void VELD_TABLE_DATA_VIEW_MODEL::remove_record(int row)
{
    if (!valid_row(row) || is_any_deleted_row(row))
        return;
    if (is_new_row(row))
    {
        set_flag(row, NEW_ROW | EDITED_ROW, false);
        set_flag(row, DELETED_NEW_ROW, true);
    }
    else
    {
        // Other records refer to the values in the database, so those are
        // the ones checked.
        const EDITED_RECORD* edited = m_rows[row];
        const KOR_RECORD_DATA* in_database =
            edited->original_record() ? edited->original_record() : edited->value_record();
        KOR_XML_QUERY_INTERFACE* query = query_interface();
        bool in_use = false;
        for (int column = 0; query && column < m_column_fields.size(); ++column)
        {
            const KOR_FIELD_SCHEMA* field = m_column_fields[column];
            if (!field || field->dependents().isEmpty())
                continue;
            const KOR_FIELD_DATA* field_data = field_data_at(in_database, column);
            const QVariant value = field_data ? field_data->value() : QVariant();
            QString error;
            if (query->any_dependents_using_existing_value(error, m_table_key, field, value))
            {
                emit statusUpdate(QStringLiteral("Cannot delete this record (due to '") +
                                  field->field_name() + QLatin1Char(':') + value.toString() +
                                  QStringLiteral("'): ") + error);
                in_use = true;
            }
        }
        if (in_use)
            return;
        set_flag(row, DELETED_ROW, true);
        m_released_keys.insert(record_key(row));
    }
    emit_row_changed(row);
    emit_changed_flag();
}

// ---------------------------------------------------------------------------
// Apply

bool VELD_TABLE_DATA_VIEW_MODEL::apply_changes()
{
    KOR_XML_QUERY_INTERFACE* query = query_interface();
    if (!query)
    {
        emit statusUpdate(
            QStringLiteral("Could not access the main query interface in order to apply table changes"));
        return false;
    }
    QString error;
    if (!query->get_table_data(error, m_table_key))
    {
        emit statusUpdate(error);
        return false;
    }
    const QStringList related_tables{m_table_key};

    error.clear();
    if (!query->begin_transaction(error, true))
    {
        emit statusUpdate(error);
        return false;
    }
    // A failed apply abandons its transaction, so that nothing half sent can
    // be committed later by someone else's end of a transaction. All pending
    // work stays in the model for the next try.
    const auto failed = [&](const QString& text) {
        emit statusUpdate(text);
        query->terminate_transaction();
        return false;
    };

    for (int row = 0; row < m_rows.size(); ++row)
    {
        if (!is_deleted_row(row) || !m_rows[row]->original_record())
            continue;
        const QString text = query->remove_record(m_table_key, *m_rows[row]->original_record());
        if (!text.isEmpty())
            return failed(text);
    }
    for (const EDIT_ENTRY& entry : m_edit_list)
    {
        if (!is_edited_row(entry.row) || is_deleted_row(entry.row) || !m_rows[entry.row]->original_record())
            continue;
        const QString text =
            query->edit_record_data(m_table_key, m_rows[entry.row]->original_record(), entry.snapshot.get());
        if (!text.isEmpty())
            return failed(text);
    }
    for (int row = 0; row < m_rows.size(); ++row)
    {
        if (!is_new_row(row))
            continue;
        const QString text = query->add_record(m_table_key, m_rows[row]->edited_record());
        if (!text.isEmpty())
            return failed(text);
    }
    for (auto it = m_field_descriptions.constBegin(); it != m_field_descriptions.constEnd(); ++it)
    {
        const KOR_FIELD_SCHEMA* field =
            m_table_schema ? m_table_schema->field_schema_by_name(it.key()) : nullptr;
        if (!field)
            continue;
        const QString text = query->set_field_description(m_table_key, field->field_name(),
                                                          field->field_unique_id(), it.value());
        if (!text.isEmpty())
            return failed(text);
    }

    error.clear();
    if (!query->end_transaction(error))
    {
        emit statusUpdate(error);
        if (query->in_transaction())
            query->terminate_transaction();
        return false;
    }
    emit transactionApplied(related_tables);
    return true;
}
