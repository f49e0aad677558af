#include "veld_table_data_view_sort_model.h"

#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_schema.h"
#include "veld_table_data_view_model.h"

VELD_TABLE_DATA_VIEW_SORT_MODEL::VELD_TABLE_DATA_VIEW_SORT_MODEL(QObject* parent)
    : QSortFilterProxyModel(parent)
{
}

VELD_TABLE_DATA_VIEW_SORT_MODEL::~VELD_TABLE_DATA_VIEW_SORT_MODEL() = default;

void VELD_TABLE_DATA_VIEW_SORT_MODEL::setSourceModel(QAbstractItemModel* source_model)
{
    if (m_table_model && m_table_model->proxy() == this)
        m_table_model->set_proxy(nullptr);
    m_table_model = qobject_cast<VELD_TABLE_DATA_VIEW_MODEL*>(source_model);
    if (m_table_model)
        m_table_model->set_proxy(this);
    watch_source(source_model);
    QSortFilterProxyModel::setSourceModel(source_model);
}

void VELD_TABLE_DATA_VIEW_SORT_MODEL::watch_source(QAbstractItemModel* source_model)
{
    for (const QMetaObject::Connection& connection : qAsConst(m_source_connections))
        disconnect(connection);
    m_source_connections.clear();
    m_sort_keys.clear();
    if (!source_model)
        return;
    // Connected before the base class connects its own handlers, so that a
    // changed row has lost its sort key by the time the proxy sorts it again.
    const auto forget_all = [this] { m_sort_keys.clear(); };
    m_source_connections << connect(source_model, &QAbstractItemModel::dataChanged, this,
                                    [this](const QModelIndex& top_left, const QModelIndex& bottom_right) {
                                        m_sort_keys.forget_rows(top_left.row(), bottom_right.row());
                                    })
                         << connect(source_model, &QAbstractItemModel::rowsInserted, this,
                                    [this](const QModelIndex& parent, int first, int last) {
                                        // Rows appended at the end move no other row.
                                        if (last + 1 != sourceModel()->rowCount(parent))
                                            m_sort_keys.clear();
                                    })
                         << connect(source_model, &QAbstractItemModel::rowsRemoved, this, forget_all)
                         << connect(source_model, &QAbstractItemModel::rowsMoved, this, forget_all)
                         << connect(source_model, &QAbstractItemModel::modelReset, this, forget_all)
                         << connect(source_model, &QAbstractItemModel::layoutChanged, this, forget_all);
}

QString VELD_TABLE_DATA_VIEW_SORT_MODEL::build_filter_tree()
{
    return m_filter_tree.build(m_filter_rows ? m_filter_rows() : QList<VELD_FILTER_ROW*>());
}

QString VELD_TABLE_DATA_VIEW_SORT_MODEL::filter_expression_text() const
{
    return VELD_FILTER_TREE::expression_text(m_filter_rows ? m_filter_rows() : QList<VELD_FILTER_ROW*>());
}

const KOR_FIELD_SCHEMA* VELD_TABLE_DATA_VIEW_SORT_MODEL::field_of_column(int column) const
{
    if (m_table_model && (!m_table_schema || m_table_schema == m_table_model->table_schema()))
        return m_table_model->field_of_column(column);
    return m_table_schema ? m_table_schema->field_schema_by_row(column) : nullptr;
}

bool VELD_TABLE_DATA_VIEW_SORT_MODEL::passes_date_filter(int source_row) const
{
    const KOR_RECORD_DATA* record = m_table_model ? m_table_model->record_of_row(source_row) : nullptr;
    const qint64 modified = record ? record->modification_msecs() : 0;
    if (m_show_old_records && modified == 0)
        return true;
    return modified != 0 && modified <= m_modified_before && modified >= m_modified_after;
}

bool VELD_TABLE_DATA_VIEW_SORT_MODEL::filterAcceptsRow(int source_row, const QModelIndex& source_parent) const
{
    if (m_pass_all)
        return true;
    if (m_forced_rows.contains(source_row))
        return true;
    if (m_table_model)
    {
        if (m_table_model->is_new_row(source_row) || m_table_model->is_deleted_row(source_row) ||
            m_table_model->is_deleted_new_row(source_row))
            return true;
        if (m_record_set_filter_on)
        {
            const KOR_RECORD_DATA* record = m_table_model->record_of_row(source_row);
            if (!record || !m_record_set.contains(record->uuid()))
                return false;
        }
        if (m_date_filter_on && !passes_date_filter(source_row))
            return false;
    }
    if (m_filter_tree.is_empty())
        return true;
    const QAbstractItemModel* source = sourceModel();
    const int role = m_filter_on_display_text == 1 ? Qt::DisplayRole : Qt::EditRole;
    return m_filter_tree.accepts([&](int column) {
        return source->data(source->index(source_row, column, source_parent), role).toString();
    });
}

bool VELD_TABLE_DATA_VIEW_SORT_MODEL::lessThan(const QModelIndex& source_left,
                                               const QModelIndex& source_right) const
{
    const VELD_TABLE_DATA_VIEW_MODEL* model = m_table_model;
    if (!model)
        return QSortFilterProxyModel::lessThan(source_left, source_right);
    const int left_row = source_left.row();
    const int right_row = source_right.row();

    // Which of the two rows shows first, for the pending rows: -1 the left,
    // 1 the right, 0 when their values decide.
    int pending_order = 0;
    const bool left_deleted = model->is_deleted_row(left_row) || model->is_deleted_new_row(left_row);
    const bool right_deleted = model->is_deleted_row(right_row) || model->is_deleted_new_row(right_row);
    if (left_deleted != right_deleted)
    {
        pending_order = left_deleted ? 1 : -1;
    }
    else
    {
        const bool left_new = model->is_new_row(left_row);
        const bool right_new = model->is_new_row(right_row);
        if (left_new && !right_new)
            pending_order = 1;
        else if (right_new && !left_new)
            pending_order = -1;
        else if (left_new && right_new)
            pending_order = left_row < right_row ? -1 : (left_row > right_row ? 1 : 0);
    }
    if (pending_order != 0 || model->is_new_row(left_row))
    {
        // A descending sort asks lessThan(right, left) and reverses the
        // order, which would bring pending rows to the top: answer so that
        // they stay at the bottom either way.
        if (sortOrder() == Qt::DescendingOrder)
            return pending_order > 0;
        return pending_order < 0;
    }

    // In the display role a field that depends on another table shows
    // looked-up texts, compared by what they hold; otherwise the field's type
    // decides.
    const bool display = m_sort_on_display_text == 1;
    const int role = display ? Qt::DisplayRole : Qt::EditRole;
    const int column = source_left.column();
    if (!m_sort_keys.is_for(column, role))
    {
        const KOR_FIELD_SCHEMA* field = field_of_column(column);
        const bool by_held_type = field && display && field->dependency();
        m_sort_keys.start(column, role,
                          by_held_type ? VELD_SORT_KEYS::BY_HELD_TYPE : VELD_SORT_KEYS::BY_FIELD_TYPE,
                          field ? field->field_type() : KFT_TEXT);
    }
    struct COLUMN_VALUES : VELD_SORT_KEYS::VALUES
    {
        const VELD_TABLE_DATA_VIEW_MODEL* model;
        int column;
        int role;
        int row_count() const override { return model->rowCount(); }
        QVariant value(int row) const override { return model->data(model->index(row, column), role); }
    } values;
    values.model = model;
    values.column = column;
    values.role = role;
    return m_sort_keys.less(left_row, right_row, values);
}
