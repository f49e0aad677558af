#include "value_exists_combo_box_validator.h"

#include "filter_combo_box.h"

#include <QLineEdit>

VALUE_EXISTS_COMBO_BOX_VALIDATOR::VALUE_EXISTS_COMBO_BOX_VALIDATOR(FILTER_COMBO_BOX* combo_box)
    : QValidator(combo_box), m_combo_box(combo_box)
{
}

QValidator::State VALUE_EXISTS_COMBO_BOX_VALIDATOR::validate(QString& input, int& position) const
{
    Q_UNUSED(position)
    bool part_of_some_item = false;
    for (int item = 0; item < m_combo_box->count(); ++item)
    {
        const QString text = m_combo_box->itemText(item);
        if (text.compare(input, Qt::CaseInsensitive) == 0)
        {
            if (text != input)
                input = text;
            return Acceptable;
        }
        if (text.contains(input, Qt::CaseInsensitive))
            part_of_some_item = true;
    }
    return part_of_some_item ? Intermediate : Invalid;
}

void VALUE_EXISTS_COMBO_BOX_VALIDATOR::fixup(QString& input) const
{
    if (m_combo_box->hasFocus() || (m_combo_box->lineEdit() && m_combo_box->lineEdit()->hasFocus()))
        return;
    QString answer = m_combo_box->itemText(0);
    for (int item = m_combo_box->count() - 1; item >= 0; --item)
    {
        const QString text = m_combo_box->itemText(item);
        if (text.compare(input, Qt::CaseInsensitive) == 0)
        {
            answer = text;
            break;
        }
        if (text.contains(input, Qt::CaseInsensitive))
            answer = text;
    }
    m_combo_box->set_filter_text(input);
    input = answer;
}
