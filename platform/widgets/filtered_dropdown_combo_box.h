#pragma once

#include <QComboBox>

class QCompleter;

namespace QTSHARED
{
// An editable combo box that narrows its choices to the items containing what
// the user types (ignoring case), and keeps the user to items of its list: text
// the user typed is resolved to an item when editing ends, never stored as text
// of its own. Text set by code (lineEdit()->setText) is left as it is.
//
// The full list is the combo's own model; the narrowed list is the completer's
// popup over that model, so item rows and user data never shift while typing.
class FilteredDropdownComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit FilteredDropdownComboBox(QWidget* parent = nullptr);

    // Hides QComboBox::setCurrentIndex: a choice made by code also ends any
    // narrowing in progress, so the line shows the chosen item's text and not
    // what was typed before.
    void setCurrentIndex(int index);

    // Makes the typed text choose an item: the item equal to it ignoring case,
    // else the only item containing it. Empty text chooses an empty item when
    // the list has one. Anything else puts the current item's text back.
    // Answers the current index afterwards.
    int resolve_typed_text();

    // The rows whose text contains `filter`, ignoring case, in list order:
    // what the narrowed popup offers for that text.
    QList<int> matching_rows(const QString& filter) const;

    QCompleter* narrowing_completer() const { return m_completer; }

    // One Return in the narrowed popup both chooses and ends the editing:
    // the highlighted row (or the typed text resolved) becomes current, and
    // the key goes on to the box, where an item view's editor commits.
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void focusOutEvent(QFocusEvent* event) override;

private:
    QCompleter* m_completer = nullptr;
};
} // namespace QTSHARED
