#include "table_item_delegate.h"

#include "table_launcher_model.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QSortFilterProxyModel>

TABLE_ITEM_DELEGATE::TABLE_ITEM_DELEGATE(QSortFilterProxyModel* proxy, TABLE_LAUNCHER_MODEL* source_model,
                                         QObject* parent)
    : QStyledItemDelegate(parent), m_proxy(proxy), m_source_model(source_model)
{
}

QRect TABLE_ITEM_DELEGATE::pin_rect(const QRect& item_rect)
{
    return QRect(item_rect.width() - 11, item_rect.top() + 2, 11, 11);
}

QRect TABLE_ITEM_DELEGATE::click_rect(const QRect& item_rect)
{
    return QRect(item_rect.right() - 14, item_rect.top(), 15, 15);
}

void TABLE_ITEM_DELEGATE::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const char* picture = nullptr;
    if (option.state & QStyle::State_MouseOver)
        picture = ":/icons/pin";
    else if (m_proxy && m_source_model && m_source_model->is_pinned(m_proxy->mapToSource(index).row()))
        picture = ":/icons/pinned";
    if (picture)
        painter->drawPixmap(pin_rect(option.rect), QPixmap(QString::fromLatin1(picture)));
}

QSize TABLE_ITEM_DELEGATE::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    Q_UNUSED(index)
    return QSize(option.rect.width(), 16);
}

bool TABLE_ITEM_DELEGATE::editorEvent(QEvent* event, QAbstractItemModel* model,
                                      const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::MouseButtonRelease || !m_proxy || !m_source_model)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (!click_rect(option.rect).contains(mouse->pos()))
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    m_source_model->toggle_pinned(m_proxy->mapToSource(index).row());
    m_source_model->write_pinned();
    emit pinned(index);
    return true;
}
