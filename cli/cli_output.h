#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QTextStream>

class QIODevice;

// What a command writes: its results to standard output, messages and
// progress to standard error. Progress shows on a terminal, or everywhere
// when asked for; on a terminal it rewrites one line, elsewhere it writes a
// line now and then.
class CLI_OUTPUT
{
public:
    // Exit codes shared by every command.
    enum EXIT_CODE
    {
        SUCCESS = 0,  // done; nothing found that the command reports as a finding
        FINDINGS = 1, // done, and findings (problems, differences, changes) reported
        FAILURE = 2   // a usage error, or the command could not do its work
    };

    CLI_OUTPUT(QIODevice& out, QIODevice& err, bool err_is_terminal);
    ~CLI_OUTPUT();

    QTextStream& out() { return m_out; }
    QTextStream& err() { return m_err; }

    void set_progress(bool wanted);
    bool err_is_terminal() const { return m_err_is_terminal; }
    // A progress text; shown at most ten times a second.
    void progress(const QString& text);
    // Takes the progress line away before results or messages follow.
    void end_progress();

    // "orbin-db: text" on standard error; answers FAILURE.
    int fail(const QString& text);
    // "orbin-db: text" on standard error, as a note.
    void note(const QString& text);

    // One field of a tab-separated line: tabs, line breaks and backslashes
    // escaped as \t, \n, \r and \\, so that a line is always one record.
    static QString field(const QString& text);
    static QString row(const QStringList& fields);

private:
    QTextStream m_out;
    QTextStream m_err;
    bool m_err_is_terminal;
    bool m_progress = false;
    bool m_progress_shown = false;
    QElapsedTimer m_since_progress;
};
