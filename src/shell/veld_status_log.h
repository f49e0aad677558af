#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTime>

// The rules of the status list, the program's one log, apart from its widget:
// how a line looks, how many are kept, and what happens to lines that arrive
// while the list is locked during a mass operation (they wait, and at most the
// last MAX_LINES of them are shown when it unlocks).
//
// The lock is a plain flag, not a count: nested locks end at the first unlock.
class VELD_STATUS_LOG
{
public:
    static constexpr int MAX_LINES = 300;

    // The current time in Qt::TextDate form, "> " and the text.
    static QString format_line(const QString& text);
    static QString format_line(const QString& text, const QTime& time);

    bool is_locked() const { return m_locked; }
    void lock() { m_locked = true; }
    // Unlocks and hands over the lines held back, at most the last MAX_LINES,
    // oldest first; none are held afterwards.
    QStringList unlock();
    // Keeps a line until unlock.
    void hold_back(const QString& line) { m_held_back << line; }
    int held_back_count() const { return m_held_back.size(); }

private:
    QStringList m_held_back;
    bool m_locked = false;
};
