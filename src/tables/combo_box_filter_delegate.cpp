#include "combo_box_filter_delegate.h"

#include "filter_combo_box.h"

#include <QPainter>

COMBO_BOX_FILTER_DELEGATE::COMBO_BOX_FILTER_DELEGATE(FILTER_COMBO_BOX* combo_box)
    : QAbstractItemDelegate(combo_box), m_combo_box(combo_box)
{
}

void COMBO_BOX_FILTER_DELEGATE::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const
{
    const QString text = index.data(Qt::DisplayRole).toString();
    if (text.isEmpty())
        return;
    const QString filter =
        m_combo_box->filter_text().isEmpty() ? m_combo_box->currentText() : m_combo_box->filter_text();
    const bool matches = text.contains(filter, Qt::CaseInsensitive);
    const QColor fill =
        index.row() == m_combo_box->highlighted_item() ? QColor(85, 170, 255) : QColor(Qt::white);

    painter->save();
    painter->setPen(fill);
    painter->setBrush(fill);
    painter->drawRect(option.rect);
    QPen pen(matches ? QColor(Qt::black) : QColor(Qt::lightGray));
    pen.setWidth(3);
    painter->setPen(pen);
    painter->drawText(QPoint(option.rect.left() + 5, option.rect.bottom() - 5), text);
    painter->restore();
}

QSize COMBO_BOX_FILTER_DELEGATE::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    Q_UNUSED(index)
    return option.decorationSize;
}
