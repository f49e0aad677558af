#pragma once

#include <QList>
#include <QString>

class PROGRESS_CALLBACK;
class UPDATE_COMMAND_ITEM;

// The parser of an update commands file. Problems are reported through the
// progress callback (if any) with the file and line, and kept in last_error().
class UPDATE_COMMAND_ITEMS
{
public:
    explicit UPDATE_COMMAND_ITEMS(PROGRESS_CALLBACK* progress = nullptr);
    ~UPDATE_COMMAND_ITEMS();
    UPDATE_COMMAND_ITEMS(const UPDATE_COMMAND_ITEMS&) = delete;
    UPDATE_COMMAND_ITEMS& operator=(const UPDATE_COMMAND_ITEMS&) = delete;

    // Reads every command of the file, replacing what was read before. False
    // when the file cannot be read or a line is malformed; the commands before
    // the bad line are kept.
    bool parse_commands_file_for_schema_changes(const QString& path);
    // The same for text already in memory; `source` names it in messages.
    bool parse_commands_text(const QString& text, const QString& source);
    int command_count() const { return m_items.size(); }
    // Owned by this object; null outside 0..command_count()-1.
    UPDATE_COMMAND_ITEM* item_at(int index) const;
    const QString& last_error() const { return m_last_error; }

private:
    void clear();
    PROGRESS_CALLBACK* m_progress;
    QList<UPDATE_COMMAND_ITEM*> m_items;
    QString m_last_error;
};
