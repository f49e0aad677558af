#pragma once

#include <QAbstractItemDelegate>

class FILTER_COMBO_BOX;

// Paints the popup rows of a FILTER_COMBO_BOX: rows that contain the filter
// (or, with none, the current text) in black, the others in light grey, and
// the highlighted row on blue.
class COMBO_BOX_FILTER_DELEGATE : public QAbstractItemDelegate
{
    Q_OBJECT

public:
    explicit COMBO_BOX_FILTER_DELEGATE(FILTER_COMBO_BOX* combo_box);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    FILTER_COMBO_BOX* m_combo_box;
};
