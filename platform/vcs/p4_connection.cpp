#include "p4_connection.h"

#include "vcs_depot.h"
#include "vcs_file_argument.h"
#include "vcs_p4_depot.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QMutex>

namespace
{
QMutex default_mutex;
QString default_start;

// The local folder a file argument points into, without its revision and wildcards.
QString local_location(const QString& argument)
{
    if (argument.isEmpty() || argument.startsWith(QLatin1String("//")) ||
        argument.startsWith(QLatin1Char('-')))
        return QString();
    QString path = argument;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (QDir::isRelativePath(path))
        return QString();
    const int last_separator = path.lastIndexOf(QLatin1Char('/'));
    const int marker = std::max(path.lastIndexOf(QLatin1Char('#')), path.lastIndexOf(QLatin1Char('@')));
    if (marker > last_separator)
        path = path.left(marker);
    int wildcard = path.indexOf(QLatin1String("..."));
    const int star = path.indexOf(QLatin1Char('*'));
    if (star >= 0 && (wildcard < 0 || star < wildcard))
        wildcard = star;
    if (wildcard >= 0)
        path = path.left(wildcard);
    return path;
}
} // namespace

P4_CONNECTION::P4_CONNECTION(bool tagged, bool error_last, bool trace)
    : tagged_output(tagged), error_on_last_line(error_last), trace_commands(trace)
{
}

P4_CONNECTION::~P4_CONNECTION() = default;

void P4_CONNECTION::set_default_start_directory(const QString& directory)
{
    QMutexLocker locker(&default_mutex);
    default_start = directory;
}

QString P4_CONNECTION::default_start_directory()
{
    QMutexLocker locker(&default_mutex);
    return default_start;
}

QString P4_CONNECTION::start_location() const
{
    if (!start_directory.isEmpty())
        return start_directory;
    const QString fallback = default_start_directory();
    return fallback.isEmpty() ? QDir::currentPath() : fallback;
}

QString P4_CONNECTION::location_of(const QStringList& arguments) const
{
    for (const QString& argument : arguments)
    {
        const QString location = local_location(argument);
        if (!location.isEmpty())
            return location;
    }
    return start_location();
}

VCS_DEPOT* P4_CONNECTION::depot_for(QString& error, const QString& path)
{
    const QString location = VCS_DEPOT::clean(path);
    for (const auto& depot : depots)
    {
        if (depot->backend_name() == QLatin1String("git"))
        {
            const QString root = depot->root();
            if (location == root || location.startsWith(root + QLatin1Char('/')))
                return depot.get();
        }
    }
    std::unique_ptr<VCS_DEPOT> opened = VCS_DEPOT::open(error, location, program);
    if (!opened)
    {
        // A Perforce client is one per process environment: reuse it for
        // paths that lie in no clone.
        for (const auto& depot : depots)
        {
            if (depot->backend_name() == QLatin1String("perforce"))
            {
                error.clear();
                return depot.get();
            }
        }
        return nullptr;
    }
    if (auto* perforce = dynamic_cast<VCS_P4_DEPOT*>(opened.get()))
    {
        for (const auto& depot : depots)
        {
            if (depot->backend_name() == QLatin1String("perforce"))
                return depot.get();
        }
        perforce->set_tagged(tagged_output);
    }
    depots.push_back(std::move(opened));
    return depots.back().get();
}

bool P4_CONNECTION::connect(QString& error, const QString& program_name, bool check_server)
{
    connected = false;
    program = program_name;
    depots.clear();
    VCS_DEPOT* depot = depot_for(error, start_location());
    if (!depot)
    {
        error_text = error;
        return false;
    }
    if (check_server)
    {
        int change = 0;
        const QString root = depot->root();
        if (root.isEmpty() || !depot->head_change(error, root, change))
        {
            if (error.isEmpty())
                error = QStringLiteral("The depot of '%1' cannot be reached").arg(start_location());
            error_text = error;
            return false;
        }
    }
    error.clear();
    error_text.clear();
    connected = true;
    return true;
}

QString P4_CONNECTION::get_root()
{
    QString error;
    VCS_DEPOT* depot = depot_for(error, start_location());
    if (!depot)
    {
        error_text = error;
        return QString();
    }
    return depot->root();
}

QString P4_CONNECTION::backend_name()
{
    QString error;
    VCS_DEPOT* depot = depot_for(error, start_location());
    return depot ? depot->backend_name() : QString();
}

bool P4_CONNECTION::run(const QString& command, const QStringList& arguments, QVector<QString>& output,
                        const QString& input, QString* error, bool append)
{
    if (!append)
        output.clear();
    return execute(command, arguments, input, &output, nullptr, nullptr, error);
}

bool P4_CONNECTION::run(const QString& command, const QStringList& arguments, LINE_CALLBACK callback,
                        void* user_data, const QString& input, QString* error)
{
    return execute(command, arguments, input, nullptr, callback, user_data, error);
}

bool P4_CONNECTION::execute(const QString& command, const QStringList& arguments, const QString& input,
                            QVector<QString>* lines, LINE_CALLBACK callback, void* user_data, QString* error)
{
    QVector<VCS_OUTPUT_LINE> produced;
    bool ok = false;
    QString failure;
    if (!connected && !connect(failure, program, false))
    {
        produced.append(VCS_OUTPUT_LINE{2, failure});
    }
    else
    {
        QStringList cleaned;
        for (const QString& argument : arguments)
        {
            // File names written the Windows way still name the same files.
            cleaned.append(local_location(argument).isEmpty()
                               ? argument
                               : QString(argument).replace(QLatin1Char('\\'), QLatin1Char('/')));
        }
        VCS_DEPOT* depot = depot_for(failure, location_of(cleaned));
        if (!depot)
            produced.append(VCS_OUTPUT_LINE{2, failure});
        else
            ok = depot->run(command, cleaned, input, produced);
    }

    if (!ok)
    {
        int last_error = -1;
        for (int i = produced.size() - 1; i >= 0; --i)
        {
            if (produced.at(i).level >= 2 && !produced.at(i).text.trimmed().isEmpty())
            {
                last_error = i;
                break;
            }
        }
        if (last_error < 0)
            produced.append(VCS_OUTPUT_LINE{2, QStringLiteral("'%1' failed").arg(command)});
        else if (error_on_last_line && last_error != produced.size() - 1)
            produced.append(produced.at(last_error));
        failure = produced.last().text;
    }
    error_text = ok ? QString() : failure;
    if (error)
        *error = error_text;
    if (trace_commands)
        qDebug().noquote() << "depot:" << command << arguments.join(QLatin1Char(' '))
                           << (ok ? "ok" : "failed");
    for (const VCS_OUTPUT_LINE& line : qAsConst(produced))
    {
        if (trace_commands)
            qDebug().noquote() << "  " << line.text;
        if (lines)
            lines->append(line.text);
        if (callback)
            callback(line.level, line.text.toUtf8().constData(), user_data);
    }
    return ok;
}
