#include "cli_output.h"

#include "kor_update_command_codec.h"

#include <QIODevice>

CLI_OUTPUT::CLI_OUTPUT(QIODevice& out, QIODevice& err, bool err_is_terminal)
    : m_out(&out), m_err(&err), m_err_is_terminal(err_is_terminal), m_progress(err_is_terminal)
{
    m_out.setCodec("UTF-8");
    m_err.setCodec("UTF-8");
}

CLI_OUTPUT::~CLI_OUTPUT()
{
    end_progress();
    m_out.flush();
    m_err.flush();
}

void CLI_OUTPUT::set_progress(bool wanted)
{
    m_progress = wanted;
}

void CLI_OUTPUT::progress(const QString& text)
{
    if (!m_progress)
        return;
    if (m_progress_shown && m_since_progress.isValid() && m_since_progress.elapsed() < 100)
        return;
    m_since_progress.start();
    m_out.flush();
    if (m_err_is_terminal)
        m_err << '\r' << text.left(100) << "\x1b[K";
    else
        m_err << "orbin-db: " << text << '\n';
    m_err.flush();
    m_progress_shown = true;
}

void CLI_OUTPUT::end_progress()
{
    if (m_progress_shown && m_err_is_terminal)
        m_err << "\r\x1b[K";
    m_err.flush();
    m_progress_shown = false;
}

int CLI_OUTPUT::fail(const QString& text)
{
    note(text);
    return FAILURE;
}

void CLI_OUTPUT::note(const QString& text)
{
    end_progress();
    m_out.flush();
    m_err << "orbin-db: " << text << '\n';
    m_err.flush();
}

QString CLI_OUTPUT::field(const QString& text)
{
    // The escaping of the engine's update command files: a value reads the
    // same in a report and in the file that recorded its change.
    return KOR_UPDATE_COMMAND_CODEC::escape(text);
}

QString CLI_OUTPUT::row(const QStringList& fields)
{
    QStringList escaped;
    escaped.reserve(fields.size());
    for (const QString& text : fields)
        escaped.append(field(text));
    return escaped.join(QLatin1Char('\t'));
}
