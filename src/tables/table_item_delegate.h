#pragma once

#include <QStyledItemDelegate>

class QSortFilterProxyModel;
class TABLE_LAUNCHER_MODEL;

// Paints a launcher row with its pin (the pin under the mouse, the pinned
// mark otherwise) and toggles the pin on a click in the row's top right corner.
class TABLE_ITEM_DELEGATE : public QStyledItemDelegate
{
    Q_OBJECT

public:
    TABLE_ITEM_DELEGATE(QSortFilterProxyModel* proxy, TABLE_LAUNCHER_MODEL* source_model,
                        QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // Where the pin is drawn, and where a click toggles it.
    static QRect pin_rect(const QRect& item_rect);
    static QRect click_rect(const QRect& item_rect);

signals:
    void pinned(const QModelIndex& index);

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

private:
    QSortFilterProxyModel* m_proxy;
    TABLE_LAUNCHER_MODEL* m_source_model;
};
