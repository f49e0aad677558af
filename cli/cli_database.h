#pragma once

#include "progress_report_list.h"

#include <QString>
#include <QStringList>

#include <memory>

class KOR_XML_QUERY_INTERFACE;

// A database folder opened for reading only: the engine's read-only
// connection, which never writes (a folder with an interrupted commit is
// refused rather than repaired). What the engine reports is kept here.
class CLI_DATABASE
{
public:
    CLI_DATABASE();
    ~CLI_DATABASE();

    bool open(QString& error, const QString& path);
    KOR_XML_QUERY_INTERFACE& engine() { return *m_engine; }
    const QString& path() const { return m_path; }

    // What the engine reported, in order: warnings, errors, and notes of
    // what it could not answer and why.
    const PROGRESS_REPORT_LIST& reports() const { return m_reports; }

    // The database a folder names: the folder itself when it is one,
    // otherwise the one database below it (a workspace). Empty, with the
    // reason, when there is none or more than one.
    static QString find_database(QString& error, const QString& folder);

private:
    PROGRESS_REPORT_LIST m_reports;
    std::unique_ptr<KOR_XML_QUERY_INTERFACE> m_engine;
    QString m_path;
};
