#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

// The record of one merge, in the user's home folder under "merge_log": one
// folder per merge ("<time>-<database folder name>") holding "merge.log"
// and a copy of every local file the merge was about to change
// ("yours__<path with __ for />"). The folder is flat so that the start-up
// clean-up of old merge logs removes it whole.
class KOR_MERGE_LOG
{
public:
    // Makes the folder and starts the log; false with a message when the
    // folder cannot be written (a merge does not start without its copies).
    bool open(QString& error, const QString& database_path, const QString& caller);

    void line(const QString& text);
    // Copies a local file into the log folder before the merge touches it.
    bool keep_copy(QString& error, const QString& database_path, const QString& file);

    const QString& folder() const { return log_folder; }
    static QString base_folder();

private:
    QString log_folder;
    QFile log_file;
};
