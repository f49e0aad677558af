#include "filter_combo_box.h"

FILTER_COMBO_BOX::FILTER_COMBO_BOX(QWidget* parent) : QComboBox(parent)
{
    connect(this, QOverload<int>::of(&QComboBox::highlighted), this, &FILTER_COMBO_BOX::set_highlighted_item);
}

void FILTER_COMBO_BOX::set_highlighted_item(int item)
{
    m_highlighted_item = item;
}

void FILTER_COMBO_BOX::keyPressEvent(QKeyEvent* event)
{
    // Typing starts a new filter: the popup then tests against the current text.
    m_filter_text.clear();
    QComboBox::keyPressEvent(event);
}
