#include "filtered_dropdown_combo_box.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>

namespace QTSHARED
{
FilteredDropdownComboBox::FilteredDropdownComboBox(QWidget* parent)
    : QComboBox(parent)
{
    setEditable(true);
    // Typed text must never become an item of its own.
    setInsertPolicy(QComboBox::NoInsert);

    m_completer = new QCompleter(model(), this);
    m_completer->setCompletionColumn(modelColumn());
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setFilterMode(Qt::MatchContains);
    m_completer->setCompletionMode(QCompleter::PopupCompletion);
    m_completer->setMaxVisibleItems(maxVisibleItems());
    setCompleter(m_completer);

    connect(lineEdit(), &QLineEdit::editingFinished, this, [this]() {
        // While the narrowed popup is open the completer decides; resolving
        // now would undo the row the user is about to pick.
        if (!m_completer->popup()->isVisible())
            resolve_typed_text();
    });
}

void FilteredDropdownComboBox::setCurrentIndex(int index)
{
    if (m_completer->popup()->isVisible())
        m_completer->popup()->hide();
    QComboBox::setCurrentIndex(index);
    if (lineEdit())
        lineEdit()->setText(index >= 0 && index < count() ? itemText(index) : QString());
}

QList<int> FilteredDropdownComboBox::matching_rows(const QString& filter) const
{
    QList<int> rows;
    for (int row = 0; row < count(); ++row)
    {
        if (itemText(row).contains(filter, Qt::CaseInsensitive))
            rows.append(row);
    }
    return rows;
}

int FilteredDropdownComboBox::resolve_typed_text()
{
    if (!lineEdit())
        return currentIndex();
    const QString typed = lineEdit()->text();
    int chosen = -1;
    for (int row = 0; row < count() && chosen < 0; ++row)
    {
        if (itemText(row).compare(typed, Qt::CaseInsensitive) == 0)
            chosen = row;
    }
    if (chosen < 0 && !typed.isEmpty())
    {
        const QList<int> rows = matching_rows(typed);
        if (rows.size() == 1)
            chosen = rows.first();
    }
    if (chosen >= 0)
    {
        if (chosen != currentIndex())
        {
            QComboBox::setCurrentIndex(chosen);
            emit activated(chosen);
        }
        lineEdit()->setText(itemText(chosen));
    }
    else
    {
        lineEdit()->setText(currentIndex() >= 0 ? itemText(currentIndex()) : QString());
    }
    return currentIndex();
}

void FilteredDropdownComboBox::focusOutEvent(QFocusEvent* event)
{
    // Focus moving into the narrowed popup is part of typing, not its end.
    if (!m_completer->popup()->isVisible())
        resolve_typed_text();
    QComboBox::focusOutEvent(event);
}
} // namespace QTSHARED
