#pragma once

#include "veld_filter_tree.h"
#include "veld_sort_keys.h"

#include <QPointer>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QUuid>

#include <functional>

class KOR_FIELD_SCHEMA;
class KOR_TABLE_SCHEMA;
class VELD_TABLE_DATA_VIEW_MODEL;

// Sorting and filtering between the table data model and its view.
//
// Rows pass the filters in this order: all rows while "pass all" is set; rows
// forced visible during a paste; new and deleted rows always; then the record
// set, the modification-date filter and the filter expression built from the
// editor's filter rows.
//
// Sorting compares typed values (or display texts); rows the user added or
// marked for deletion stay behind all others in both directions, new rows in
// the order they were made, deleted rows last.
class VELD_TABLE_DATA_VIEW_SORT_MODEL : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit VELD_TABLE_DATA_VIEW_SORT_MODEL(QObject* parent = nullptr);
    ~VELD_TABLE_DATA_VIEW_SORT_MODEL() override;

    // The source is meant to be a VELD_TABLE_DATA_VIEW_MODEL; the proxy
    // becomes that model's proxy for its row numbers.
    void setSourceModel(QAbstractItemModel* source_model) override;
    VELD_TABLE_DATA_VIEW_MODEL* table_model() const { return m_table_model; }

    // The editor's list of filter rows (not owned), read at each build.
    template <typename ROW> void set_filter_widgets(const QList<ROW*>* widgets)
    {
        m_filter_rows = [widgets]() {
            QList<VELD_FILTER_ROW*> rows;
            if (widgets)
                for (ROW* widget : *widgets)
                    rows.append(widget);
            return rows;
        };
    }
    void set_filter_rows(const std::function<QList<VELD_FILTER_ROW*>()>& rows) { m_filter_rows = rows; }

    // Builds the filter expression from the filter rows; gives back the
    // bracket warning or an empty text. Call it after every change of a row
    // and after a row is removed, then invalidate.
    QString build_filter_tree();
    const VELD_FILTER_TREE& filter_tree() const { return m_filter_tree; }
    // The expression of the filter rows as text.
    QString filter_expression_text() const;

    // The schema whose fields give the columns' types; taken from the source
    // model when it is set.
    void set_table_schema(const KOR_TABLE_SCHEMA* table_schema) { m_table_schema = table_schema; }

    // 1 tests (or compares) display texts, 0 underlying values.
    int filter_on_display_text() const { return m_filter_on_display_text; }
    void set_filter_on_display_text(int on) { m_filter_on_display_text = on; }
    int sort_on_display_text() const { return m_sort_on_display_text; }
    void set_sort_on_display_text(int on) { m_sort_on_display_text = on; }

    bool pass_all() const { return m_pass_all; }
    void set_pass_all(bool pass_all) { m_pass_all = pass_all; }

    // The modification-date filter; bounds in milliseconds since the epoch.
    bool date_filter_on() const { return m_date_filter_on; }
    void set_date_filter_on(bool on) { m_date_filter_on = on; }
    // Records without a timestamp show while the date filter is on.
    bool show_old_records() const { return m_show_old_records; }
    void set_show_old_records(bool show) { m_show_old_records = show; }
    qint64 modified_before() const { return m_modified_before; }
    void set_modified_before(qint64 msecs) { m_modified_before = msecs; }
    qint64 modified_after() const { return m_modified_after; }
    void set_modified_after(qint64 msecs) { m_modified_after = msecs; }

    // Shows only these records (by uuid) while on.
    bool record_set_filter_on() const { return m_record_set_filter_on; }
    void set_record_set_filter_on(bool on) { m_record_set_filter_on = on; }
    const QSet<QUuid>& record_set() const { return m_record_set; }
    void set_record_set(const QSet<QUuid>& records) { m_record_set = records; }

    // Source rows kept visible while a paste fills them.
    const QSet<int>& forced_rows() const { return m_forced_rows; }
    void add_forced_row(int source_row) { m_forced_rows.insert(source_row); }
    void clear_forced_rows() { m_forced_rows.clear(); }

protected:
    bool filterAcceptsRow(int source_row, const QModelIndex& source_parent) const override;
    bool lessThan(const QModelIndex& source_left, const QModelIndex& source_right) const override;

private:
    const KOR_FIELD_SCHEMA* field_of_column(int column) const;
    bool passes_date_filter(int source_row) const;

    void watch_source(QAbstractItemModel* source_model);

    std::function<QList<VELD_FILTER_ROW*>()> m_filter_rows;
    VELD_FILTER_TREE m_filter_tree;
    const KOR_TABLE_SCHEMA* m_table_schema = nullptr;
    QPointer<VELD_TABLE_DATA_VIEW_MODEL> m_table_model;
    int m_filter_on_display_text = 1;
    int m_sort_on_display_text = 1;
    bool m_pass_all = false;
    bool m_date_filter_on = false;
    bool m_show_old_records = true;
    qint64 m_modified_before = 0;
    qint64 m_modified_after = 0;
    bool m_record_set_filter_on = false;
    QSet<QUuid> m_record_set;
    QSet<int> m_forced_rows;
    // Filled as rows are compared; they follow the source's changes.
    mutable VELD_SORT_KEYS m_sort_keys;
    QList<QMetaObject::Connection> m_source_connections;
};
