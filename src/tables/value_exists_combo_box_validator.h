#pragma once

#include <QValidator>

class FILTER_COMBO_BOX;

// Accepts only the text of an item of its combo box (ignoring case, corrected
// to the item's own spelling); text that is part of some item is still being
// typed. When editing ends elsewhere, fixup turns what was typed into an item.
class VALUE_EXISTS_COMBO_BOX_VALIDATOR : public QValidator
{
    Q_OBJECT

public:
    explicit VALUE_EXISTS_COMBO_BOX_VALIDATOR(FILTER_COMBO_BOX* combo_box);

    State validate(QString& input, int& position) const override;
    void fixup(QString& input) const override;

private:
    FILTER_COMBO_BOX* m_combo_box;
};
