#pragma once

#include <QComboBox>

// A combo box that keeps the user to values that exist, with its popup rows
// greyed out unless they contain what was typed (VALUE_EXISTS_COMBO_BOX_VALIDATOR,
// COMBO_BOX_FILTER_DELEGATE). The script and subtitle forms use it.
class FILTER_COMBO_BOX : public QComboBox
{
    Q_OBJECT

public:
    explicit FILTER_COMBO_BOX(QWidget* parent = nullptr);

    // The text the popup rows are tested against; set by the validator's fixup.
    const QString& filter_text() const { return m_filter_text; }
    void set_filter_text(const QString& text) { m_filter_text = text; }
    // The popup row under the mouse or keyboard, -1 before any.
    int highlighted_item() const { return m_highlighted_item; }

public slots:
    void set_highlighted_item(int item);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString m_filter_text;
    int m_highlighted_item = -1;
};
