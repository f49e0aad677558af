#include "cli_database.h"

#include "kor_table_io.h"
#include "kor_xml_query_interface.h"

#include <QDir>
#include <QFileInfo>

CLI_DATABASE::CLI_DATABASE() : m_engine(new KOR_XML_QUERY_INTERFACE(&m_reports, QString(), false, false)) {}

CLI_DATABASE::~CLI_DATABASE() = default;

bool CLI_DATABASE::open(QString& error, const QString& path)
{
    if (!QFileInfo(path).isDir())
    {
        error = QStringLiteral("'%1' is not a folder").arg(path);
        return false;
    }
    if (!KOR_TABLE_IO::is_database(error, path))
        return false;
    m_path = QDir::cleanPath(QDir(path).absolutePath());
    error = m_engine->connect_for_diff(m_path);
    return error.isEmpty();
}

QString CLI_DATABASE::find_database(QString& error, const QString& folder)
{
    const QString marker = KOR_TABLE_IO::validation_file_name();
    if (!QFileInfo(folder).isDir())
    {
        error = QStringLiteral("'%1' is not a folder").arg(folder);
        return QString();
    }
    if (QFileInfo::exists(QDir(folder).filePath(marker)))
        return QDir::cleanPath(QDir(folder).absolutePath());
    // A workspace: its database lies a few folders down. Hidden folders
    // (version control), the engine's own folders and the insides of
    // databases are not searched, nor anything deeper than a workspace's
    // layout goes.
    const int max_depth = 6;
    QStringList found;
    QStringList level{folder};
    for (int depth = 0; depth < max_depth && !level.isEmpty(); ++depth)
    {
        QStringList next;
        for (const QString& parent : qAsConst(level))
        {
            for (const QFileInfo& entry :
                 QDir(parent).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
            {
                if (entry.fileName().startsWith(QLatin1String("Veld")))
                    continue;
                if (QFileInfo::exists(entry.filePath() + QLatin1Char('/') + marker))
                    found.append(QDir::cleanPath(entry.absoluteFilePath()));
                else
                    next.append(entry.filePath());
            }
        }
        level = next;
    }
    found.sort();
    if (found.size() == 1)
        return found.first();
    error = found.isEmpty() ? QStringLiteral("no database (a folder with %1) in '%2'").arg(marker, folder)
                            : QStringLiteral("'%1' holds %2 databases; name one of them: %3")
                                  .arg(folder)
                                  .arg(found.size())
                                  .arg(found.mid(0, 5).join(QStringLiteral(", ")) +
                                       (found.size() > 5 ? QStringLiteral(", ...") : QString()));
    return QString();
}
