#include "veld_table_search.h"

#include "kor_table_schema.h"
#include "prompt.h"
#include "veld_cell_walker.h"
#include "veld_clipboard_text.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"
#include "veld_table_mass_operation.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QTableView>

#include <algorithm>

VELD_TABLE_SEARCH::VELD_TABLE_SEARCH(QTableView* view, VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy,
                                     QWidget* dialog_parent)
    : m_view(view), m_proxy(proxy), m_dialog_parent(dialog_parent)
{
}

bool VELD_TABLE_SEARCH::matches(const QModelIndex& index, const TERMS& terms, bool underlying) const
{
    // An empty text is in every cell: replacing it would write the
    // replacement between every two characters.
    if (terms.text.isEmpty() || !index.isValid())
        return false;
    const QString text =
        VELD_CLIPBOARD_TEXT::cell_text(index.data(underlying ? Qt::EditRole : Qt::DisplayRole));
    return text.contains(terms.text, terms.case_sensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
}

void VELD_TABLE_SEARCH::fill_matches_from_selection()
{
    m_search_matches.clear();
    if (!m_view->selectionModel())
        return;
    QModelIndexList selected = m_view->selectionModel()->selectedIndexes();
    const QHeaderView* header = m_view->horizontalHeader();
    // The order the user reads them in, not the order they were selected.
    std::sort(selected.begin(), selected.end(), [header](const QModelIndex& a, const QModelIndex& b) {
        if (a.row() != b.row())
            return a.row() < b.row();
        return header->visualIndex(a.column()) < header->visualIndex(b.column());
    });
    for (const QModelIndex& index : qAsConst(selected))
        m_search_matches.append(QPersistentModelIndex(index));
}

QVector<QModelIndex> VELD_TABLE_SEARCH::walk(const TERMS& terms, int start_row, int start_column, int wanted)
{
    QVector<QModelIndex> found;
    if (!m_proxy || !m_proxy->sourceModel())
        return found;
    const auto enough = [&]() { return wanted >= 0 && found.size() >= wanted; };

    if (terms.in_selection)
    {
        if (m_search_matches.isEmpty())
            fill_matches_from_selection();
        while (!m_search_matches.isEmpty() && !enough())
        {
            const QPersistentModelIndex index = m_search_matches.takeFirst();
            if (matches(index, terms, terms.underlying))
                found.append(index);
        }
        return found;
    }

    const QHeaderView* header = m_view->horizontalHeader();
    int field_column = -1;
    const VELD_TABLE_DATA_VIEW_MODEL* model = m_proxy->table_model();
    if (!terms.field.isEmpty() && model && model->table_schema())
    {
        const int logical = model->table_schema()->column_ordering().indexOf(terms.field);
        if (logical >= 0)
            field_column = header->visualIndex(logical);
    }
    VELD_CELL_WALKER walker(m_proxy->rowCount(), header->count(), start_row, start_column, terms.direction,
                            field_column);
    while (!enough() && walker.next())
    {
        const int logical = header->logicalIndex(walker.column());
        if (field_column < 0 && m_view->isColumnHidden(logical))
            continue;
        const QModelIndex index = m_proxy->index(walker.row(), logical);
        if (matches(index, terms, terms.underlying))
            found.append(index);
    }
    return found;
}

void VELD_TABLE_SEARCH::make_current(const QModelIndex& index)
{
    m_view->selectionModel()->clearSelection();
    m_view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    m_view->scrollTo(index);
}

bool VELD_TABLE_SEARCH::find(const TERMS& terms)
{
    const QModelIndex current = m_view->currentIndex();
    const bool from_current =
        current.isValid() && m_view->selectionModel() && m_view->selectionModel()->hasSelection();
    const int start_row = from_current ? current.row() : 0;
    const int start_column = from_current ? m_view->horizontalHeader()->visualIndex(current.column()) : 0;
    const QVector<QModelIndex> found = walk(terms, start_row, start_column, 1);
    if (found.isEmpty())
        return false;
    make_current(found.first());
    return true;
}

bool VELD_TABLE_SEARCH::replace_in_cell(const QModelIndex& index, const TERMS& terms,
                                        const QString& replacement)
{
    const QString before = VELD_CLIPBOARD_TEXT::cell_text(index.data(Qt::EditRole));
    const QString after = QString(before).replace(
        terms.text, replacement, terms.case_sensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
    if (after == before)
    {
        prompt::warning(
            m_dialog_parent, QStringLiteral("Text Not Replaced"),
            QStringLiteral("Text has not been replaced.\nThis can happen if you filter by display text "
                           "(only the underlying value can be edited)"));
        return false;
    }
    return m_proxy->setData(index, after, Qt::EditRole);
}

bool VELD_TABLE_SEARCH::replace_current_or_next(const TERMS& terms, const QString& replacement)
{
    if (!m_proxy)
        return false;
    // Which text of the current cell counts follows the proxy's filter, as
    // the user reads the cells the filter let through.
    const bool current_holds = matches(m_view->currentIndex(), terms, m_proxy->filter_on_display_text() == 0);
    if (!current_holds && !find(terms))
        return false;
    replace_in_cell(m_view->currentIndex(), terms, replacement);
    find(terms);
    return true;
}

int VELD_TABLE_SEARCH::replace_all(const TERMS& terms, const QString& replacement)
{
    if (!m_proxy || !m_proxy->table_model())
        return 0;
    VELD_TABLE_DATA_VIEW_MODEL* model = m_proxy->table_model();
    if (terms.in_selection)
        fill_matches_from_selection();
    // Every target is known, as a record's cell, before the first write: a
    // replacement in the sort column moves rows, and one that still holds
    // the text would otherwise be found again and again.
    QVector<QPersistentModelIndex> targets;
    for (const QModelIndex& index : walk(terms, 0, 0, -1))
        targets.append(QPersistentModelIndex(m_proxy->mapToSource(index)));
    for (const QPersistentModelIndex& target : qAsConst(targets))
        m_proxy->add_forced_row(target.row());

    {
        VELD_TABLE_MASS_OPERATION mass_operation(model);
        for (const QPersistentModelIndex& target : qAsConst(targets))
        {
            const QModelIndex index = m_proxy->mapFromSource(target);
            if (!index.isValid())
                continue;
            make_current(index);
            replace_in_cell(index, terms, replacement);
        }
    }
    // As after a paste, the rows just written stay in sight until the next
    // filtering.
    m_proxy->invalidate();
    m_proxy->clear_forced_rows();
    return targets.size();
}
