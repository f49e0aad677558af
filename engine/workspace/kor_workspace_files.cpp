#include "kor_workspace_files.h"

#include "kor_db_file.h"
#include "kor_table_io.h"
#include "kor_xml_query_interface.h"
#include "kor_xml_query_interface_p.h"
#include "vcs_depot.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

QString KOR_WORKSPACE_FILES::clean(const QString& path)
{
    return VCS_DEPOT::clean(QFileInfo(path).absoluteFilePath());
}

std::unique_ptr<VCS_DEPOT> KOR_WORKSPACE_FILES::depot(QString& error, const QString& database_path)
{
    if (KOR_DB_FILE::single_db_mode())
    {
        error =
            QStringLiteral("The database '%1' is used offline without version control").arg(database_path);
        return nullptr;
    }
    if (database_path.isEmpty() || !QFileInfo(database_path).isDir())
    {
        error = QStringLiteral("The database folder '%1' does not exist").arg(database_path);
        return nullptr;
    }
    return VCS_DEPOT::open(error, clean(database_path));
}

QString KOR_WORKSPACE_FILES::table_file(const QString& database_path, const QString& table)
{
    return clean(database_path) + QLatin1Char('/') + KOR_TABLE_IO::table_file_relative(table);
}

QString KOR_WORKSPACE_FILES::schema_file(const QString& database_path, const QString& table)
{
    return clean(database_path) + QLatin1Char('/') + KOR_TABLE_IO::schema_file_relative(table);
}

KOR_WORKSPACE_FILES::KIND KOR_WORKSPACE_FILES::kind_of(const QString& database_path, const QString& file,
                                                       QString* table)
{
    const QString folder = clean(database_path);
    const QString path = clean(file);
    if (!path.startsWith(folder + QLatin1Char('/')))
        return OTHER;
    const QString relative = path.mid(folder.size() + 1);
    const QStringList parts = relative.split(QLatin1Char('/'));
    if (parts.size() == 1 && KOR_TABLE_IO::is_table_file_name(parts.first()))
    {
        if (table)
            *table = parts.first().chopped(4);
        return TABLE_DATA;
    }
    if (parts.size() == 2 && parts.first() == KOR_TABLE_IO::schema_folder_name() &&
        parts.last().endsWith(QLatin1String(".xml")))
    {
        if (table)
            *table = parts.last().chopped(4);
        return TABLE_SCHEMA;
    }
    return OTHER;
}

bool KOR_WORKSPACE_FILES::changes(QString& error, VCS_DEPOT& depot, const QString& database_path,
                                  CHANGES& out)
{
    out = CHANGES();
    if (!depot.status(error, clean(database_path), out.statuses))
        return false;
    QSet<QString> deleted_data;
    QSet<QString> schema_present;
    for (const VCS_FILE_STATUS& status : qAsConst(out.statuses))
    {
        if (status.change == VCS_ACTION::NONE)
            continue;
        out.changed_files.insert(status.path);
        if (status.change == VCS_ACTION::ADD)
            out.added_files.insert(status.path);
        QString table;
        switch (kind_of(database_path, status.path, &table))
        {
        case TABLE_DATA:
            if (status.change == VCS_ACTION::DELETE)
                deleted_data.insert(table);
            else
                out.changed_tables.insert(table);
            break;
        case TABLE_SCHEMA:
            if (status.change == VCS_ACTION::DELETE)
                out.deleted_tables.insert(table);
            else
                out.changed_schemas.insert(table);
            break;
        case OTHER:
            break;
        }
    }
    // A data file gone while its schema stays is an emptied table, not a removed one.
    for (const QString& table : qAsConst(deleted_data))
    {
        if (QFileInfo::exists(schema_file(database_path, table)))
            out.changed_tables.insert(table);
        else
            out.deleted_tables.insert(table);
    }
    return true;
}

bool KOR_WORKSPACE_FILES::safety_copy(QString& error, const QString& database_path, const QStringList& files,
                                      QString* folder)
{
    QStringList present;
    for (const QString& file : files)
    {
        if (QFileInfo(file).isFile())
            present.append(clean(file));
    }
    if (folder)
        folder->clear();
    if (present.isEmpty())
        return true;
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.cache");
    base += QStringLiteral("/orbin/safety");
    QString target = base + QLatin1Char('/') +
                     QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    for (int suffix = 1; QFileInfo::exists(target); ++suffix)
        target = target.section(QLatin1Char('~'), 0, 0) + QStringLiteral("~%1").arg(suffix);
    const QString root = clean(database_path);
    for (const QString& file : qAsConst(present))
    {
        const QString relative = file.startsWith(root + QLatin1Char('/'))
                                     ? file.mid(root.size() + 1)
                                     : QStringLiteral("outside/") + QFileInfo(file).fileName();
        const QString destination = target + QLatin1Char('/') + relative;
        if (!QDir().mkpath(QFileInfo(destination).absolutePath()) || !QFile::copy(file, destination))
        {
            error = QStringLiteral("Cannot keep a safety copy of '%1' in '%2'; nothing was changed")
                        .arg(file, target);
            return false;
        }
    }
    if (folder)
        *folder = target;
    QStringList kept = QDir(base).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    while (kept.size() > 10)
        QDir(base + QLatin1Char('/') + kept.takeFirst()).removeRecursively();
    return true;
}

void KOR_WORKSPACE_FILES::report(KOR_XML_QUERY_INTERFACE& query_interface, const QString& text, int severity)
{
    query_interface.engine_private()->report(text, severity);
}

void KOR_WORKSPACE_FILES::report_once(KOR_XML_QUERY_INTERFACE& query_interface, const QString& text,
                                      int severity)
{
    const QByteArray name = "orbin_reported_" + QByteArray::number(qHash(text));
    if (query_interface.property(name.constData()).toBool())
        return;
    query_interface.setProperty(name.constData(), true);
    report(query_interface, text, severity);
}

bool KOR_WORKSPACE_FILES::matches_have_revision(const QString& database_path, const QString& file,
                                                const QByteArray& content)
{
    QString error;
    std::unique_ptr<VCS_DEPOT> vcs = depot(error, database_path);
    if (!vcs)
        return false;
    QByteArray have;
    bool exists = false;
    if (!vcs->read_file(error, file, QStringLiteral("#have"), have, exists) || !exists)
        return false;
    return have == content;
}
