#include "veld_table_cell_edits.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "prompt.h"
#include "veld_clipboard_tools.h"
#include "veld_paste_key_plan.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"
#include "veld_table_mass_operation.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSet>
#include <QTableView>

#include <cmath>

namespace
{
// The end of a paste on every way out: the kept cascade answer goes with
// the mass operation, and the rows held visible are let go after one more
// filtering shows them.
class PASTE_SCOPE
{
public:
    explicit PASTE_SCOPE(VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy)
        : m_proxy(proxy), m_mass_operation(proxy->table_model())
    {
    }
    ~PASTE_SCOPE()
    {
        if (!m_proxy)
            return;
        m_proxy->invalidate();
        m_proxy->clear_forced_rows();
    }
    PASTE_SCOPE(const PASTE_SCOPE&) = delete;
    PASTE_SCOPE& operator=(const PASTE_SCOPE&) = delete;

private:
    QPointer<VELD_TABLE_DATA_VIEW_SORT_MODEL> m_proxy;
    VELD_TABLE_MASS_OPERATION m_mass_operation;
};

// A result as the model reads it: whole numbers without an exponent, which
// an integer field would refuse ("1e+06").
QVariant arithmetic_result(double result)
{
    if (std::isfinite(result) && result == std::floor(result) && std::fabs(result) < 9.0e15)
        return QVariant(qlonglong(result));
    return QVariant(result);
}
} // namespace

VELD_TABLE_CELL_EDITS::VELD_TABLE_CELL_EDITS(QTableView* view, VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy,
                                             QWidget* dialog_parent, const STATUS& status)
    : m_view(view), m_proxy(proxy), m_dialog_parent(dialog_parent), m_status(status)
{
}

QString VELD_TABLE_CELL_EDITS::copy(bool display_text, bool with_headers) const
{
    return VELD_CLIPBOARD::copy_selection(m_view, m_view->model(), display_text, with_headers);
}

QVector<QPersistentModelIndex> VELD_TABLE_CELL_EDITS::selected_source_cells() const
{
    QVector<QPersistentModelIndex> cells;
    if (!m_proxy || !m_view->selectionModel())
        return cells;
    const QModelIndexList selected = m_view->selectionModel()->selectedIndexes();
    cells.reserve(selected.size());
    for (const QModelIndex& index : selected)
        cells.append(QPersistentModelIndex(m_proxy->mapToSource(index)));
    return cells;
}

QModelIndex VELD_TABLE_CELL_EDITS::paste_origin() const
{
    const QModelIndex current = m_view->currentIndex();
    QItemSelectionModel* selection = m_view->selectionModel();
    if (!current.isValid() || !selection || !m_proxy)
        return QModelIndex();
    const QHeaderView* header = m_view->horizontalHeader();
    int row = current.row();
    int visual = header->visualIndex(current.column());
    const auto selected = [&](int at_row, int at_visual) {
        return selection->isSelected(m_proxy->index(at_row, header->logicalIndex(at_visual)));
    };
    for (bool moved = true; moved;)
    {
        moved = false;
        if (visual > 0 && selected(row, visual - 1))
        {
            --visual;
            moved = true;
        }
        if (row > 0 && selected(row - 1, visual))
        {
            --row;
            moved = true;
        }
    }
    return m_proxy->index(row, header->logicalIndex(visual));
}

void VELD_TABLE_CELL_EDITS::paste()
{
    if (!m_proxy || !m_proxy->table_model())
        return;
    VELD_TABLE_DATA_VIEW_MODEL* model = m_proxy->table_model();
    m_proxy->clear_forced_rows();
    const QModelIndex origin = paste_origin();
    if (!origin.isValid())
        return;
    VELD_CLIPBOARD_TEXT::CELLS rows;
    VELD_CLIPBOARD::parse_clipboard(m_view, rows, origin);

    bool new_records = false;
    if (rows.size() > 1 && model->is_new_row(m_proxy->mapToSource(origin).row()))
    {
        const QMessageBox::StandardButton answer = prompt::question(
            m_dialog_parent, QStringLiteral("Paste"),
            QStringLiteral(
                "You are pasting multiple records, create new records and paste into these?\n('No' to "
                "overwrite existing records, 'Cancel' to cancel paste)"),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::No);
        if (answer != QMessageBox::Yes && answer != QMessageBox::No)
            return;
        new_records = answer == QMessageBox::Yes;
    }
    if (rows.size() == 1 && rows.first().size() == 1 && m_view->selectionModel() &&
        m_view->selectionModel()->selectedIndexes().size() >= 2)
    {
        const QMessageBox::StandardButton answer = prompt::question(
            m_dialog_parent, QStringLiteral("Paste"),
            QStringLiteral("You are pasting a single value into multiple cells, duplicate this value across "
                           "cells?\n('No' to paste only to first cell, 'Cancel' to cancel paste)"),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::No);
        if (answer == QMessageBox::Yes)
            paste_into_selection(rows.first().first());
        if (answer != QMessageBox::No)
            return;
    }
    paste_rows(rows, new_records);
}

void VELD_TABLE_CELL_EDITS::paste_into_selection(const QString& value)
{
    const QVector<QPersistentModelIndex> targets = selected_source_cells();
    // One value over many key cells is a paste too: the cascade question is
    // asked once when the user keeps the answer.
    PASTE_SCOPE scope(m_proxy);
    for (const QPersistentModelIndex& target : targets)
        m_proxy->add_forced_row(target.row());
    for (const QPersistentModelIndex& target : targets)
    {
        const QModelIndex index = m_proxy->mapFromSource(target);
        if (index.isValid())
            m_proxy->setData(index, value, Qt::EditRole);
    }
}

void VELD_TABLE_CELL_EDITS::paste_rows(const VELD_CLIPBOARD_TEXT::CELLS& rows, bool new_records)
{
    VELD_TABLE_DATA_VIEW_MODEL* model = m_proxy->table_model();
    const KOR_TABLE_SCHEMA* schema = model->table_schema();
    if (!schema)
        return;
    QMap<QString, int> column_of_field;
    for (const QString& field : schema->primary_key_fields())
        column_of_field.insert(field, schema->column_ordering().indexOf(field));

    // The records the rows of the block land on, fixed before any write; a
    // row past the end of the table stops the paste there.
    const int new_record = -2;
    const int past_the_end = -1;
    QVector<int> targets;
    int position = 0;
    for (auto row = rows.constBegin(); row != rows.constEnd(); ++row, ++position)
    {
        if (new_records && position > 0)
            targets.append(new_record);
        else if (row.key() >= 0 && row.key() < m_proxy->rowCount())
            targets.append(m_proxy->mapToSource(m_proxy->index(row.key(), 0)).row());
        else
            targets.append(past_the_end);
    }

    PASTE_SCOPE scope(m_proxy);
    position = 0;
    for (auto row = rows.constBegin(); row != rows.constEnd(); ++row, ++position)
    {
        int source_row = targets[position];
        if (source_row == new_record)
        {
            source_row = model->add_record();
            if (!m_proxy->mapFromSource(model->index(source_row, 0)).isValid())
                return;
        }
        if (source_row < 0)
            return;

        QMap<QString, QString> current_texts;
        for (auto field = column_of_field.constBegin(); field != column_of_field.constEnd(); ++field)
            current_texts.insert(field.key(), KOR_FIELD_DATA::variant_to_text(model->data(
                                                  model->index(source_row, field.value()), Qt::EditRole)));
        const VELD_PASTE_KEY_PLAN plan = VELD_PASTE_KEY_PLAN::make(
            schema->primary_key_fields(), column_of_field, current_texts, row.value(),
            model->record_key(source_row), [model](const QString& key) { return model->key_in_use(key); });
        m_proxy->add_forced_row(source_row);
        if (plan.key_refused() && m_status)
            m_status(plan.refusal_text(row.key()));

        for (auto cell = row.value().constBegin(); cell != row.value().constEnd(); ++cell)
        {
            const KOR_FIELD_SCHEMA* field = model->field_of_column(cell.key());
            if (!field || field->field_type() == KFT_AUTONUMBER || field->field_type() == KFT_UNIQUE_ID ||
                !plan.writes(cell.key()))
                continue;
            const QModelIndex index = m_proxy->mapFromSource(model->index(source_row, cell.key()));
            if (!index.isValid())
                continue;
            if (!m_proxy->setData(index, cell.value(), Qt::EditRole))
                return;
        }
    }
}

bool VELD_TABLE_CELL_EDITS::selection_is_whole_records() const
{
    if (!m_view->selectionModel() || !m_proxy)
        return false;
    QMap<int, QSet<int>> columns_of_row;
    for (const QModelIndex& index : m_view->selectionModel()->selectedIndexes())
        columns_of_row[index.row()].insert(index.column());
    if (columns_of_row.isEmpty())
        return false;
    const int columns = m_proxy->columnCount();
    for (const QSet<int>& selected : qAsConst(columns_of_row))
        if (selected.size() != columns)
            return false;
    return true;
}

void VELD_TABLE_CELL_EDITS::clear_selected_cells()
{
    if (!m_proxy || !m_proxy->table_model())
        return;
    VELD_TABLE_DATA_VIEW_MODEL* model = m_proxy->table_model();
    for (const QPersistentModelIndex& target : selected_source_cells())
    {
        const KOR_FIELD_SCHEMA* field = model->field_of_index(target);
        if (field && !field->is_required())
            model->setData(target, QVariant(), Qt::EditRole);
    }
}

void VELD_TABLE_CELL_EDITS::edit_selected_cells(const QString& value)
{
    if (!m_proxy || !m_proxy->table_model() || !m_view->selectionModel())
        return;
    const QModelIndexList selected = m_view->selectionModel()->selectedIndexes();
    if (selected.size() < 2)
        return;
    const QModelIndex current = m_view->currentIndex();
    QVector<QPersistentModelIndex> targets;
    for (const QModelIndex& index : selected)
        if (index != current && VELD_CLIPBOARD_TEXT::cell_text(index.data(Qt::DisplayRole)) != value)
            targets.append(QPersistentModelIndex(m_proxy->mapToSource(index)));
    VELD_TABLE_MASS_OPERATION mass_operation(m_proxy->table_model());
    for (const QPersistentModelIndex& target : qAsConst(targets))
    {
        const QModelIndex index = m_proxy->mapFromSource(target);
        if (index.isValid())
            m_proxy->setData(index, value, Qt::EditRole);
    }
}

void VELD_TABLE_CELL_EDITS::apply_arithmetic(double value,
                                             const std::function<double(double, double)>& custom_operator)
{
    if (!custom_operator || !m_proxy || !m_view->selectionModel())
        return;
    QVector<QPair<QPersistentModelIndex, QVariant>> results;
    for (const QModelIndex& index : m_view->selectionModel()->selectedIndexes())
    {
        bool ok = false;
        const double number = VELD_CLIPBOARD_TEXT::cell_text(index.data(Qt::DisplayRole)).toDouble(&ok);
        if (ok)
            results.append(qMakePair(QPersistentModelIndex(m_proxy->mapToSource(index)),
                                     arithmetic_result(custom_operator(number, value))));
    }
    for (const auto& result : qAsConst(results))
    {
        const QModelIndex index = m_proxy->mapFromSource(result.first);
        if (index.isValid())
            m_proxy->setData(index, result.second, Qt::EditRole);
    }
}
