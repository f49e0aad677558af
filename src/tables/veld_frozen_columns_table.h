#pragma once

#include <QPoint>
#include <QSet>
#include <QTableView>

// The view of the table data editor: a table with a second table laid over its
// left edge that shows the frozen columns and stays put while the main table
// scrolls sideways. Both share one model, selection model and delegate, so
// they always show the same rows in the same order.
//
// The user freezes and unfreezes columns from either header's context menu,
// which also offers editing the field's description (update_description_for_field).
class VELD_FROZEN_COLUMNS_TABLE : public QTableView
{
    Q_OBJECT

public:
    explicit VELD_FROZEN_COLUMNS_TABLE(QAbstractItemModel* model = nullptr, QWidget* parent = nullptr);
    ~VELD_FROZEN_COLUMNS_TABLE() override;

    // Both views take the model (and then share the main view's selection model).
    void setModel(QAbstractItemModel* model) override;
    void setSelectionModel(QItemSelectionModel* selection_model) override;

    QTableView* frozen_view() const { return m_frozen_view; }
    int frozen_column_count() const { return m_frozen_column_count; }
    const QSet<int>& frozen_columns() const { return m_frozen_columns; }
    // The logical column the last header context menu was opened on, -1 for none.
    int menu_column() const { return m_menu_column; }

    // Gives the overlay the frozen-column colours of the options again.
    void refresh_frozen_style();
    // Puts the overlay over the frozen columns again; after any change of columns.
    void update_frozen_geometry();
    // Moves the frozen columns back to the front, in the order they were
    // frozen. A model reset or a restored layout rebuilds the header order,
    // and the overlay shows the first columns whatever they are.
    void keep_frozen_columns_in_front();
    // The width of the frozen area: the first frozen-count columns in the
    // overlay's visual order.
    int frozen_width() const;

signals:
    void update_description_for_field(int column_index);

public slots:
    void setColumnCount(int column_count);
    void moveColumns(int logical, int from, int to);
    void moveColumns2(int logical, int from, int to);
    void edit_activated();
    void updateSectionWidth(int logicalIndex, int, int newSize);
    void updateSectionHeight(int logicalIndex, int, int newSize);
    void field_context_menu(const QPoint& click_point);
    void freeze_column_triggered();
    void unfreeze_column_triggered();
    void edit_field_description();

protected:
    void resizeEvent(QResizeEvent* event) override;
    QModelIndex moveCursor(CursorAction cursor_action, Qt::KeyboardModifiers modifiers) override;
    // The row header widens as row numbers grow or gain " new": the overlay
    // follows whenever the view lays out its headers again.
    void updateGeometries() override;

private:
    void connect_model_signals();
    // Shows the first frozen-count columns of the overlay (in its visual order)
    // and hides the rest. A model reset or a header move can bring hidden
    // sections back, so this runs after those too.
    void apply_frozen_visibility();

    QTableView* m_frozen_view = nullptr;
    int m_frozen_column_count = 0;
    QSet<int> m_frozen_columns;
    QList<int> m_frozen_order;
    QPoint m_menu_point;
    // Which header the menu point belongs to: the two headers only share
    // coordinates while the main table is not scrolled sideways.
    bool m_menu_on_frozen_header = false;
    int m_menu_column = -1;
    bool m_moving = false;
    QMetaObject::Connection m_reset_connection;
    QMetaObject::Connection m_columns_connection;
};
