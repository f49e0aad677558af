#include "veld_frozen_columns_table.h"

#include "prompt.h"
#include "veld_options.h"

#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QShortcut>

VELD_FROZEN_COLUMNS_TABLE::VELD_FROZEN_COLUMNS_TABLE(QAbstractItemModel* model, QWidget* parent)
    : QTableView(parent)
{
    m_frozen_view = new QTableView(this);
    m_frozen_view->setObjectName(QStringLiteral("frozenColumnsView"));
    m_frozen_view->setFocusPolicy(Qt::NoFocus);
    m_frozen_view->verticalHeader()->hide();
    m_frozen_view->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_frozen_view->setAlternatingRowColors(true);
    m_frozen_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_frozen_view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_frozen_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    viewport()->stackUnder(m_frozen_view);
    refresh_frozen_style();
    m_frozen_view->hide();

    horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    m_frozen_view->horizontalHeader()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(horizontalHeader(), &QHeaderView::customContextMenuRequested, this,
            &VELD_FROZEN_COLUMNS_TABLE::field_context_menu);
    connect(m_frozen_view->horizontalHeader(), &QHeaderView::customContextMenuRequested, this,
            &VELD_FROZEN_COLUMNS_TABLE::field_context_menu);

    // The overlay lays out its rows after the view does, so for a moment its
    // range can be shorter: it takes the view's range, and only a shown
    // overlay (one the user scrolls) drives the view back, so a clamped value
    // never pulls a scroll to a row just added up short of it.
    connect(verticalScrollBar(), &QAbstractSlider::rangeChanged, m_frozen_view->verticalScrollBar(),
            &QAbstractSlider::setRange);
    connect(m_frozen_view->verticalScrollBar(), &QAbstractSlider::valueChanged, this, [this](int value) {
        if (m_frozen_view->isVisible())
            verticalScrollBar()->setValue(value);
    });
    connect(verticalScrollBar(), &QAbstractSlider::valueChanged, m_frozen_view->verticalScrollBar(),
            &QAbstractSlider::setValue);
    connect(horizontalHeader(), &QHeaderView::sectionMoved, this, &VELD_FROZEN_COLUMNS_TABLE::moveColumns);
    connect(m_frozen_view->horizontalHeader(), &QHeaderView::sectionMoved, this,
            &VELD_FROZEN_COLUMNS_TABLE::moveColumns2);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
            &VELD_FROZEN_COLUMNS_TABLE::updateSectionWidth);
    connect(verticalHeader(), &QHeaderView::sectionResized, this,
            &VELD_FROZEN_COLUMNS_TABLE::updateSectionHeight);
    // Sorting from either header sorts the one shared model; keep both
    // indicators telling the same story.
    connect(horizontalHeader(), &QHeaderView::sortIndicatorChanged, m_frozen_view->horizontalHeader(),
            &QHeaderView::setSortIndicator);
    connect(m_frozen_view->horizontalHeader(), &QHeaderView::sortIndicatorChanged, horizontalHeader(),
            &QHeaderView::setSortIndicator);

    auto* f2 = new QShortcut(QKeySequence(QStringLiteral("F2")), this);
    f2->setContext(Qt::WidgetShortcut);
    connect(f2, &QShortcut::activated, this, &VELD_FROZEN_COLUMNS_TABLE::edit_activated);

    if (model)
        setModel(model);
}

VELD_FROZEN_COLUMNS_TABLE::~VELD_FROZEN_COLUMNS_TABLE() = default;

void VELD_FROZEN_COLUMNS_TABLE::refresh_frozen_style()
{
    m_frozen_view->setStyleSheet(VELD_OPTIONS::frozen_stylesheet());
}

void VELD_FROZEN_COLUMNS_TABLE::setModel(QAbstractItemModel* model)
{
    QTableView::setModel(model);
    m_frozen_view->setModel(model);
    m_frozen_view->setSelectionModel(selectionModel());
    if (model)
    {
        // The indicator first: enabling sorting sorts the shared model by it,
        // and a table of a million rows must be sorted once, not twice.
        m_frozen_view->horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder);
        m_frozen_view->setSortingEnabled(true);
        m_frozen_view->sortByColumn(0, Qt::AscendingOrder);
        if (model->columnCount() > 0)
            m_frozen_view->setColumnWidth(0, columnWidth(0));
    }
    connect_model_signals();
    keep_frozen_columns_in_front();
}

void VELD_FROZEN_COLUMNS_TABLE::keep_frozen_columns_in_front()
{
    const int columns = model() ? model()->columnCount() : 0;
    // Columns that went away with a schema change are no longer frozen. No
    // columns at all is a model detached for a refresh: the frozen columns
    // outlive that.
    for (int i = m_frozen_order.size() - 1; i >= 0 && columns > 0; --i)
    {
        if (m_frozen_order[i] >= columns)
            m_frozen_columns.remove(m_frozen_order.takeAt(i));
    }
    QHeaderView* header = horizontalHeader();
    for (int place = 0; place < m_frozen_order.size(); ++place)
    {
        const int from = header->visualIndex(m_frozen_order[place]);
        if (from != place)
            header->moveSection(from, place);
    }
    // A header rebuilt by a reset may not have echoed the moves to the overlay.
    QHeaderView* frozen_header = m_frozen_view->horizontalHeader();
    if (frozen_header->count() == header->count())
    {
        m_moving = true;
        for (int visual = 0; visual < header->count(); ++visual)
        {
            const int from = frozen_header->visualIndex(header->logicalIndex(visual));
            if (from != visual)
                frozen_header->moveSection(from, visual);
        }
        m_moving = false;
    }
    setColumnCount(m_frozen_columns.size());
}

void VELD_FROZEN_COLUMNS_TABLE::setSelectionModel(QItemSelectionModel* selection_model)
{
    QTableView::setSelectionModel(selection_model);
    if (m_frozen_view && m_frozen_view->model() == model())
        m_frozen_view->setSelectionModel(selection_model);
}

void VELD_FROZEN_COLUMNS_TABLE::connect_model_signals()
{
    disconnect(m_reset_connection);
    disconnect(m_columns_connection);
    if (!model())
        return;
    // Queued: the headers rebuild their sections on these signals themselves,
    // after this view hears them.
    m_reset_connection = connect(
        model(), &QAbstractItemModel::modelReset, this, [this]() { keep_frozen_columns_in_front(); },
        Qt::QueuedConnection);
    m_columns_connection = connect(
        model(), &QAbstractItemModel::columnsInserted, this,
        [this]() {
            apply_frozen_visibility();
            update_frozen_geometry();
        },
        Qt::QueuedConnection);
}

void VELD_FROZEN_COLUMNS_TABLE::apply_frozen_visibility()
{
    QHeaderView* header = m_frozen_view->horizontalHeader();
    for (int visual = 0; visual < header->count(); ++visual)
    {
        const int logical = header->logicalIndex(visual);
        m_frozen_view->setColumnHidden(logical, visual >= m_frozen_column_count);
    }
    m_frozen_view->setVisible(m_frozen_column_count > 0 && model());
}

int VELD_FROZEN_COLUMNS_TABLE::frozen_width() const
{
    const QHeaderView* header = m_frozen_view->horizontalHeader();
    int width = 0;
    for (int visual = 0; visual < m_frozen_column_count && visual < header->count(); ++visual)
        width += m_frozen_view->columnWidth(header->logicalIndex(visual));
    return width;
}

void VELD_FROZEN_COLUMNS_TABLE::update_frozen_geometry()
{
    m_frozen_view->setGeometry(verticalHeader()->width() + frameWidth(), frameWidth(), frozen_width(),
                               viewport()->height() + horizontalHeader()->height());
}

void VELD_FROZEN_COLUMNS_TABLE::setColumnCount(int column_count)
{
    m_frozen_column_count = column_count;
    apply_frozen_visibility();
    update_frozen_geometry();
    for (int column : qAsConst(m_frozen_columns))
        m_frozen_view->setColumnWidth(column, columnWidth(column));
    update_frozen_geometry();
}

void VELD_FROZEN_COLUMNS_TABLE::moveColumns(int logical, int from, int to)
{
    Q_UNUSED(logical)
    if (m_moving)
        return;
    m_moving = true;
    m_frozen_view->horizontalHeader()->moveSection(from, to);
    m_moving = false;
    apply_frozen_visibility();
    update_frozen_geometry();
}

void VELD_FROZEN_COLUMNS_TABLE::moveColumns2(int logical, int from, int to)
{
    Q_UNUSED(logical)
    if (m_moving)
        return;
    m_moving = true;
    horizontalHeader()->moveSection(from, to);
    m_moving = false;
    apply_frozen_visibility();
    update_frozen_geometry();
}

void VELD_FROZEN_COLUMNS_TABLE::edit_activated()
{
    // QAbstractItemView::edit(index) opens an editor whatever the triggers;
    // a view that allows no editing (a read-only table) must not.
    if (editTriggers() != QAbstractItemView::NoEditTriggers)
        edit(currentIndex());
}

void VELD_FROZEN_COLUMNS_TABLE::updateSectionWidth(int logicalIndex, int, int newSize)
{
    m_frozen_view->setColumnWidth(logicalIndex, newSize);
    update_frozen_geometry();
}

void VELD_FROZEN_COLUMNS_TABLE::updateSectionHeight(int logicalIndex, int, int newSize)
{
    m_frozen_view->setRowHeight(logicalIndex, newSize);
}

void VELD_FROZEN_COLUMNS_TABLE::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    update_frozen_geometry();
}

void VELD_FROZEN_COLUMNS_TABLE::updateGeometries()
{
    QTableView::updateGeometries();
    if (m_frozen_view)
        update_frozen_geometry();
}

QModelIndex VELD_FROZEN_COLUMNS_TABLE::moveCursor(CursorAction cursor_action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex current = QTableView::moveCursor(cursor_action, modifiers);
    if (cursor_action == MoveLeft && current.isValid() && !m_frozen_columns.contains(current.column()))
    {
        const int left = visualRect(current).topLeft().x();
        const int frozen_right = frozen_width();
        if (left < frozen_right)
            horizontalScrollBar()->setValue(horizontalScrollBar()->value() + left - frozen_right);
    }
    return current;
}

void VELD_FROZEN_COLUMNS_TABLE::field_context_menu(const QPoint& click_point)
{
    QHeaderView* frozen_header = m_frozen_view->horizontalHeader();
    m_menu_point = click_point;
    m_menu_on_frozen_header = sender() == frozen_header;
    const int frozen_logical = frozen_header->logicalIndexAt(click_point);
    const bool frozen =
        m_menu_on_frozen_header && frozen_logical >= 0 && m_frozen_columns.contains(frozen_logical);
    m_menu_column = frozen ? frozen_logical : horizontalHeader()->logicalIndexAt(click_point);
    if (m_menu_column < 0)
        return;

    QMenu menu(this);
    menu.addAction(tr("Edit Description"), this, &VELD_FROZEN_COLUMNS_TABLE::edit_field_description);
    if (frozen)
        menu.addAction(tr("Unfreeze Column"), this, &VELD_FROZEN_COLUMNS_TABLE::unfreeze_column_triggered);
    else
        menu.addAction(tr("Freeze Column"), this, &VELD_FROZEN_COLUMNS_TABLE::freeze_column_triggered);
    const QPoint global = frozen ? frozen_header->viewport()->mapToGlobal(click_point)
                                 : horizontalHeader()->viewport()->mapToGlobal(click_point);
    prompt::exec(menu, global);
}

void VELD_FROZEN_COLUMNS_TABLE::freeze_column_triggered()
{
    QHeaderView* header = horizontalHeader();
    const int logical = m_menu_on_frozen_header ? m_menu_column : header->logicalIndexAt(m_menu_point);
    if (logical < 0 || m_frozen_columns.contains(logical))
        return;
    m_frozen_columns.insert(logical);
    m_frozen_order.append(logical);
    header->moveSection(header->visualIndex(logical), m_frozen_column_count);
    setColumnCount(m_frozen_columns.size());
}

void VELD_FROZEN_COLUMNS_TABLE::unfreeze_column_triggered()
{
    QHeaderView* frozen_header = m_frozen_view->horizontalHeader();
    const int logical = m_menu_on_frozen_header ? frozen_header->logicalIndexAt(m_menu_point) : m_menu_column;
    if (logical < 0 || !m_frozen_columns.contains(logical))
        return;
    int frozen_not_above = 0;
    for (int column : qAsConst(m_frozen_columns))
    {
        if (column <= logical)
            ++frozen_not_above;
    }
    const int to = m_frozen_column_count - frozen_not_above + logical;
    m_frozen_columns.remove(logical);
    m_frozen_order.removeAll(logical);
    horizontalHeader()->moveSection(horizontalHeader()->visualIndex(logical),
                                    qBound(0, to, horizontalHeader()->count() - 1));
    setColumnCount(m_frozen_columns.size());
    update_frozen_geometry();
}

void VELD_FROZEN_COLUMNS_TABLE::edit_field_description()
{
    // The column the menu was opened on, not the main header's column under
    // the same point: over a frozen column those differ once the main table
    // is scrolled sideways, and the description would go to another field.
    if (m_menu_column >= 0)
        emit update_description_for_field(m_menu_column);
}
