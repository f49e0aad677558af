#include "filtered_dropdown_combo_box.h"

#include <QAbstractItemView>
#include <QAbstractProxyModel>
#include <QCompleter>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace QTSHARED
{
FilteredDropdownComboBox::FilteredDropdownComboBox(QWidget* parent) : QComboBox(parent)
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
    // Installed after the completer's own filter, so it sees keys first.
    m_completer->popup()->installEventFilter(this);

    connect(lineEdit(), &QLineEdit::editingFinished, this, [this]() {
        // While the narrowed popup is open the completer decides; resolving
        // now would undo the row the user is about to pick.
        if (!m_completer->popup()->isVisible() && lineEdit()->isModified())
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

bool FilteredDropdownComboBox::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_completer->popup() || event->type() != QEvent::KeyPress)
        return QComboBox::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
        return QComboBox::eventFilter(watched, event);

    const QModelIndex chosen = m_completer->popup()->currentIndex();
    m_completer->popup()->hide();
    if (chosen.isValid())
    {
        // Through the completion model to the full list's row: items may
        // share a text (display texts of different values).
        const QModelIndex row = m_completer->completionModel()->index(chosen.row(), 0);
        const auto* completion = qobject_cast<QAbstractProxyModel*>(m_completer->completionModel());
        const int found = completion ? completion->mapToSource(row).row()
                                     : findText(row.data(Qt::DisplayRole).toString(), Qt::MatchFixedString);
        if (found >= 0)
        {
            setCurrentIndex(found);
            emit activated(found);
        }
    }
    else
        resolve_typed_text();
    QKeyEvent forwarded(QEvent::KeyPress, key->key(), key->modifiers(), key->text());
    QCoreApplication::sendEvent(this, &forwarded);
    return true;
}

void FilteredDropdownComboBox::focusOutEvent(QFocusEvent* event)
{
    // Focus moving into the narrowed popup is part of typing, not its end.
    if (!m_completer->popup()->isVisible() && lineEdit()->isModified())
        resolve_typed_text();
    QComboBox::focusOutEvent(event);
}
} // namespace QTSHARED
