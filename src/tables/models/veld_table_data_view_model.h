#pragma once

#include "edited_record.h"
#include "veld_cascade_decision.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QMap>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QUuid>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class KOR_FIELD_DATA;
class KOR_FIELD_SCHEMA;
class KOR_RECORD_DATA;
class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;
class KOR_XML_QUERY_INTERFACE;
class QItemSelectionModel;
class VELD_DATA;
class VELD_TABLE_DATA_VIEW_SORT_MODEL;
class VELD_TABLE_MODEL_QUESTIONS;

// The item model of one table in the table data editor: records as rows,
// fields as columns in the schema's column order.
//
// Every edit stays aside until apply_changes: setData validates the text by
// field type, checks keys and relationships, and writes into the row's private
// copy. New, deleted and edited rows and altered cells are marked (colours in
// the decoration role, suffixes in the row header). apply_changes sends
// deletions, every edit in the order made, additions and field descriptions
// in one transaction.
//
// Questions (the "Data Invalid" warnings, the cascade question) go through a
// VELD_TABLE_MODEL_QUESTIONS the window installs; without one, warnings become
// status lines and a cascade is refused.
//
// Sizes: a row costs a few pointers; lookups are fetched only for cells shown
// and cached per column; the set of key texts is built on the first edit.
class VELD_TABLE_DATA_VIEW_MODEL : public QAbstractTableModel
{
    Q_OBJECT

public:
    // The key prefix of rows the user added: "@@NEW_RECORD@@" and a number.
    static const QString new_record_key;

    // A model of the table on the session's main query interface, whichever
    // it is at the time of each call.
    VELD_TABLE_DATA_VIEW_MODEL(const QString& table_key, VELD_DATA* session,
                               bool right_aligned_row_numbers = false, QObject* parent = nullptr);
    // A model of the table on a given query interface (a mirror, a tool).
    VELD_TABLE_DATA_VIEW_MODEL(const QString& table_key, KOR_XML_QUERY_INTERFACE* query_interface,
                               bool right_aligned_row_numbers = false, QObject* parent = nullptr);
    ~VELD_TABLE_DATA_VIEW_MODEL() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // Fills the model from the database. False with `error` set when the
    // table or its data cannot be found.
    bool load(QString& error);
    // Reloads inside a model reset. Without `keep_edits` every pending change
    // is dropped; with it new rows and pending edits stay. A load error goes
    // out as a status line and gives false.
    bool refresh(bool keep_edits);
    // Sends all pending work in one transaction; true when it committed. On
    // failure every pending change stays, so the user can correct and apply
    // again.
    bool apply_changes();
    // Appends a new record with the fields' defaults; returns its row.
    int add_record();
    // Marks a row for deletion (a new row is simply dropped at apply). A
    // record whose key values other records use stays, with a status line
    // for each such field.
    void remove_record(int row);
    // Makes a row ignore edits (they are reported as successful).
    void lock_row(int row);

    bool is_new_row(int row) const { return has_flag(row, NEW_ROW); }
    // A record of the table marked for deletion.
    bool is_deleted_row(int row) const { return has_flag(row, DELETED_ROW); }
    // A new row that the user removed again.
    bool is_deleted_new_row(int row) const { return has_flag(row, DELETED_NEW_ROW); }
    bool is_edited_row(int row) const { return has_flag(row, EDITED_ROW); }
    // Whether edited, new or deleted rows exist (field descriptions aside).
    bool has_pending_changes() const;
    // Records of the table marked for deletion (the editor's record count
    // leaves them out).
    int deleted_row_count() const { return count_rows_with(DELETED_ROW); }

    // The current key text of a row's record; empty out of range.
    QString record_key(int row) const;
    QUuid record_uuid(int row) const;
    // Linear searches; -1 when absent. Not for loops over rows.
    int row_of_key(const QString& key) const;
    int row_of_uuid(const QUuid& uuid) const;
    // True for a key of a row that is not released by a pending deletion.
    bool key_in_use(const QString& key) const;

    // The field of a column, by its header text; null when unknown.
    const KOR_FIELD_SCHEMA* field_of_index(const QModelIndex& index) const;
    const KOR_FIELD_SCHEMA* field_of_column(int column) const;
    QString field_description(const QString& field) const;
    // Records a description to send with the next apply.
    void set_field_description(const QString& field, const QString& text);
    const QMap<QString, QString>& field_descriptions() const { return m_field_descriptions; }

    // The row's values as they stand (the private copy once edited).
    const KOR_RECORD_DATA* record_of_row(int row) const;
    const EDITED_RECORD* edited_record(int row) const;
    const QString& table_key() const { return m_table_key; }
    const KOR_TABLE_SCHEMA* table_schema() const { return m_table_schema; }
    const KOR_TABLE_DATA* table_data() const { return m_table_data; }
    KOR_XML_QUERY_INTERFACE* query_interface() const;
    VELD_DATA* session() const { return m_session; }

    // False shows underlying values in every column. Changing it resets the
    // model.
    bool display_lookups() const { return m_display_lookups; }
    void set_display_lookups(bool display_lookups);

    int frozen_column_count() const { return m_frozen_column_count; }

    // The proxy whose row numbers the row header shows. The proxy sets itself
    // when the model becomes its source.
    void set_proxy(VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy);
    VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy() const;
    // The view's selection (on the proxy): selected cells get darker colours.
    void set_selection_model(QItemSelectionModel* selection_model);

    // Takes ownership.
    void set_questions(std::unique_ptr<VELD_TABLE_MODEL_QUESTIONS> questions);
    VELD_TABLE_MODEL_QUESTIONS* questions() const { return m_questions.get(); }

    // A paste or multi-cell edit: the cascade question is asked once when the
    // user keeps the answer. Ending clears the flag and the kept answer.
    void begin_mass_operation();
    void end_mass_operation();
    bool is_mass_operation() const { return m_cascade.is_mass_operation(); }
    bool cascade_answer_known() const { return m_cascade.answer_known(); }
    bool cascade_answer() const { return m_cascade.answer(); }

    // Records ticked in a check-box row header.
    const QSet<QUuid>& toggled_records() const { return m_toggled_records; }
    void toggle_record(int row);
    void set_toggled_records(const QSet<QUuid>& records);

signals:
    void changedFlagUpdate(bool changed);
    void statusUpdate(QString status);
    void transactionApplied(const QStringList& related_tables);

public slots:
    void set_frozen_columns(int frozen_column_count);

private:
    enum ROW_FLAG : quint8
    {
        NEW_ROW = 1,
        DELETED_ROW = 2,
        DELETED_NEW_ROW = 4,
        EDITED_ROW = 8,
        NEW_COLOURED_ROW = 16
    };
    struct EDIT_ENTRY
    {
        int row;
        std::unique_ptr<KOR_RECORD_DATA> snapshot;
    };

    VELD_TABLE_DATA_VIEW_MODEL(const QString& table_key, bool right_aligned_row_numbers, QObject* parent);

    bool valid_row(int row) const { return row >= 0 && row < m_rows.size(); }
    bool has_flag(int row, quint8 flag) const { return valid_row(row) && (m_row_flags[size_t(row)] & flag); }
    void set_flag(int row, quint8 flag, bool on);
    int count_rows_with(quint8 flag) const;
    bool is_any_deleted_row(int row) const { return has_flag(row, DELETED_ROW | DELETED_NEW_ROW); }
    static quint64 cell_key(int row, int column) { return (quint64(quint32(row)) << 32) | quint32(column); }

    void clear_all();
    void fill_rows(bool keep_edits);
    void cache_columns();
    void mark_local_changes();
    void ensure_known_keys() const;
    void emit_changed_flag();
    void emit_row_changed(int row);

    const KOR_FIELD_DATA* field_data_at(const KOR_RECORD_DATA* record, int column) const;
    QVariant stored_value(int row, int column) const;
    QVariant display_value(int row, int column) const;
    QVariant decoration_value(const QModelIndex& index) const;
    QVariant row_header_text(int row) const;

    // The checks of an edit, in order; false refuses it (with its message).
    bool check_key_and_relationships(int row, const KOR_FIELD_SCHEMA& field, const QVariant& new_value,
                                     const QString& new_text);
    bool write_value(int row, const KOR_FIELD_SCHEMA& field, const QVariant& new_value);
    void warn_data_invalid(const QString& text);

    const QString m_table_key;
    VELD_DATA* m_session = nullptr;
    KOR_XML_QUERY_INTERFACE* m_query_interface = nullptr;
    const KOR_TABLE_SCHEMA* m_table_schema = nullptr;
    const KOR_TABLE_DATA* m_table_data = nullptr;

    // Rows of the table's records, in key order, then the new rows in the
    // order they were made; m_rows points at them by row number.
    std::vector<EDITED_RECORD> m_table_rows;
    std::vector<std::unique_ptr<EDITED_RECORD>> m_new_rows;
    QVector<EDITED_RECORD*> m_rows;
    std::vector<quint8> m_row_flags;
    // One snapshot for every edit of a record of the table, in edit order.
    std::vector<EDIT_ENTRY> m_edit_list;

    QSet<QString> m_released_keys;
    QSet<QUuid> m_toggled_records;
    QMap<QString, QString> m_field_descriptions;
    mutable QSet<QString> m_known_keys;
    mutable bool m_known_keys_built = false;
    int m_frozen_column_count = 0;
    QSet<quint64> m_altered_cells;
    mutable QVector<QHash<QString, QVariant>> m_lookup_cache;
    int m_new_record_counter = 0;
    bool m_display_lookups = true;

    // Per column: the field name, its schema and where records usually keep
    // the field in their field maps.
    QStringList m_column_names;
    QVector<const KOR_FIELD_SCHEMA*> m_column_fields;
    QVector<int> m_field_slots;

    QPointer<QItemSelectionModel> m_selection_model;
    QPointer<VELD_TABLE_DATA_VIEW_SORT_MODEL> m_proxy;
    VELD_CASCADE_DECISION m_cascade;
    std::unique_ptr<VELD_TABLE_MODEL_QUESTIONS> m_questions;
    const bool m_right_aligned_row_numbers;
};
