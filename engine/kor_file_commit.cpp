#include "kor_file_commit.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace
{
const char* const NEW_SUFFIX = ".veld-new";
const char* const OLD_SUFFIX = ".veld-old";

QMutex& hook_mutex()
{
    static QMutex mutex;
    return mutex;
}

KOR_FILE_COMMIT::FAULT_HOOK& fault_hook()
{
    static KOR_FILE_COMMIT::FAULT_HOOK hook;
    return hook;
}

QString new_of(const QString& path)
{
    return path + QLatin1String(NEW_SUFFIX);
}

QString old_of(const QString& path)
{
    return path + QLatin1String(OLD_SUFFIX);
}

// Makes what was written survive a power cut before it is renamed.
void sync_file(QFile& file)
{
    file.flush();
#ifdef Q_OS_UNIX
    ::fsync(file.handle());
#endif
}

void sync_folder(const QString& folder)
{
#ifdef Q_OS_UNIX
    const int handle = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (handle >= 0)
    {
        ::fsync(handle);
        ::close(handle);
    }
#else
    Q_UNUSED(folder);
#endif
}

bool rename_over(const QString& from, const QString& to)
{
    // POSIX rename replaces the target atomically; QFile::rename refuses an
    // existing target.
#ifdef Q_OS_UNIX
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
#else
    QFile::remove(to);
    return QFile::rename(from, to);
#endif
}

struct JOURNAL
{
    QStringList replaced;
    QStringList removed;
};

QByteArray journal_bytes(const QStringList& replaced, const QStringList& removed)
{
    QByteArray bytes("VELD-JOURNAL 1\n");
    for (const QString& path : replaced)
        bytes += "REPLACE " + path.toUtf8() + '\n';
    for (const QString& path : removed)
        bytes += "REMOVE " + path.toUtf8() + '\n';
    bytes += "END\n";
    return bytes;
}

// A journal that is not whole was never placed: rename makes it appear whole.
bool parse_journal(const QByteArray& bytes, JOURNAL& journal)
{
    const QList<QByteArray> lines = bytes.split('\n');
    if (lines.isEmpty() || lines.first() != "VELD-JOURNAL 1")
        return false;
    bool ended = false;
    for (int i = 1; i < lines.size(); ++i)
    {
        const QByteArray& line = lines.at(i);
        if (line == "END")
        {
            ended = true;
            break;
        }
        if (line.startsWith("REPLACE "))
            journal.replaced.append(QString::fromUtf8(line.mid(8)));
        else if (line.startsWith("REMOVE "))
            journal.removed.append(QString::fromUtf8(line.mid(7)));
        else
            return false;
    }
    return ended;
}

bool safe_relative(const QString& relative)
{
    return !relative.isEmpty() && !QDir::isAbsolutePath(relative) &&
           !relative.contains(QLatin1String("..")) && !relative.contains(QLatin1Char('\\'));
}
} // namespace

void KOR_FILE_COMMIT::set_fault_hook(const FAULT_HOOK& hook)
{
    QMutexLocker lock(&hook_mutex());
    fault_hook() = hook;
}

KOR_FILE_COMMIT::KOR_FILE_COMMIT(const QString& root) : m_root(root) {}

KOR_FILE_COMMIT::~KOR_FILE_COMMIT()
{
    if (!m_crashed)
        abandon();
}

QString KOR_FILE_COMMIT::path_of(const QString& relative) const
{
    return QDir(m_root).filePath(relative);
}

bool KOR_FILE_COMMIT::ask(STEP step, const QString& relative, QString& error)
{
    FAULT fault = FAULT_NONE;
    {
        QMutexLocker lock(&hook_mutex());
        if (fault_hook())
            fault = fault_hook()(step, relative);
    }
    if (fault == FAULT_NONE)
        return true;
    if (fault == FAULT_CRASH)
        m_crashed = true;
    error = QStringLiteral("%1: simulated %2")
                .arg(path_of(relative),
                     fault == FAULT_CRASH ? QStringLiteral("crash") : QStringLiteral("failure"));
    return false;
}

bool KOR_FILE_COMMIT::stage(QString& error, const QString& relative_path,
                            const std::function<bool(QIODevice&, QString&)>& writer)
{
    if (m_crashed)
        return false;
    if (!safe_relative(relative_path))
    {
        error = QStringLiteral("'%1' is not a file inside the database").arg(relative_path);
        return false;
    }
    if (!ask(STEP_WRITE_NEW, relative_path, error))
        return false;
    const QString target = path_of(relative_path);
    QDir().mkpath(QFileInfo(target).absolutePath());
    QFile file(new_of(target));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
    {
        error = QStringLiteral("%1: cannot be written: %2").arg(file.fileName(), file.errorString());
        return false;
    }
    QString write_error;
    if (!writer(file, write_error) || file.error() != QFileDevice::NoError)
    {
        error = QStringLiteral("%1: cannot be written: %2")
                    .arg(target, write_error.isEmpty() ? file.errorString() : write_error);
        file.close();
        file.remove();
        return false;
    }
    sync_file(file);
    file.close();
    m_removed.removeAll(relative_path);
    if (!m_replaced.contains(relative_path))
        m_replaced.append(relative_path);
    return true;
}

bool KOR_FILE_COMMIT::stage_bytes(QString& error, const QString& relative_path, const QByteArray& bytes)
{
    return stage(error, relative_path, [&bytes](QIODevice& device, QString& write_error) {
        if (device.write(bytes) != bytes.size())
        {
            write_error = device.errorString();
            return false;
        }
        return true;
    });
}

void KOR_FILE_COMMIT::stage_removal(const QString& relative_path)
{
    if (!safe_relative(relative_path))
        return;
    if (m_replaced.removeAll(relative_path) > 0)
        QFile::remove(new_of(path_of(relative_path)));
    if (!m_removed.contains(relative_path))
        m_removed.append(relative_path);
}

void KOR_FILE_COMMIT::abandon()
{
    for (const QString& relative : qAsConst(m_replaced))
        QFile::remove(new_of(path_of(relative)));
    m_replaced.clear();
    m_removed.clear();
}

bool KOR_FILE_COMMIT::commit(QString& error)
{
    if (m_crashed)
        return false;
    if (!has_changes())
        return true;

    // Before the commit point: the new files are only staged.
    const QString journal = path_of(journal_name());
    const QString journal_temporary = journal + QStringLiteral(".tmp");
    {
        if (!ask(STEP_WRITE_JOURNAL, journal_name(), error))
        {
            if (!m_crashed)
                abandon();
            return false;
        }
        QFile file(journal_temporary);
        const QByteArray bytes = journal_bytes(m_replaced, m_removed);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        {
            error = QStringLiteral("%1: cannot be written: %2").arg(journal, file.errorString());
            file.close();
            file.remove();
            abandon();
            return false;
        }
        sync_file(file);
        file.close();
        if (!rename_over(journal_temporary, journal))
        {
            error = QStringLiteral("%1: cannot be placed").arg(journal);
            QFile::remove(journal_temporary);
            abandon();
            return false;
        }
        sync_folder(m_root);
    }

    // After the commit point: every step done is noted so it can be undone.
    enum ACTION_KIND
    {
        BACKED_UP,
        INSTALLED,
        MOVED_ASIDE
    };
    struct ACTION
    {
        ACTION_KIND kind;
        QString path;
    };
    QList<ACTION> done;
    bool ok = true;
    for (const QString& relative : qAsConst(m_replaced))
    {
        const QString target = path_of(relative);
        if (QFileInfo::exists(target))
        {
            if (!ask(STEP_BACKUP_OLD, relative, error))
            {
                ok = false;
                break;
            }
            if (!rename_over(target, old_of(target)))
            {
                error = QStringLiteral("%1: cannot be moved aside").arg(target);
                ok = false;
                break;
            }
            done.append(ACTION{BACKED_UP, target});
        }
        if (!ask(STEP_INSTALL_NEW, relative, error))
        {
            ok = false;
            break;
        }
        if (!rename_over(new_of(target), target))
        {
            error = QStringLiteral("%1: cannot be put in place").arg(target);
            ok = false;
            break;
        }
        done.append(ACTION{INSTALLED, target});
    }
    for (int i = 0; ok && i < m_removed.size(); ++i)
    {
        const QString target = path_of(m_removed.at(i));
        if (!QFileInfo::exists(target))
            continue;
        if (!ask(STEP_REMOVE, m_removed.at(i), error))
        {
            ok = false;
            break;
        }
        if (!rename_over(target, old_of(target)))
        {
            error = QStringLiteral("%1: cannot be removed").arg(target);
            ok = false;
            break;
        }
        done.append(ACTION{MOVED_ASIDE, target});
    }
    if (m_crashed)
        return false;

    if (!ok)
    {
        // Undo in reverse; a new file goes back to its staging name so that
        // the journal still describes the folder at every moment.
        bool undone = true;
        for (int i = done.size() - 1; i >= 0; --i)
        {
            const ACTION& action = done.at(i);
            switch (action.kind)
            {
            case INSTALLED:
                undone = rename_over(action.path, new_of(action.path)) && undone;
                break;
            case BACKED_UP:
            case MOVED_ASIDE:
                undone = rename_over(old_of(action.path), action.path) && undone;
                break;
            }
        }
        if (!undone)
        {
            error +=
                QStringLiteral("; the change could not be undone and will be completed when the database "
                               "is next opened");
            m_replaced.clear();
            m_removed.clear();
            return false;
        }
        QFile::remove(journal);
        sync_folder(m_root);
        abandon();
        return false;
    }

    sync_folder(m_root);
    QString ignored;
    if (ask(STEP_REMOVE_JOURNAL, journal_name(), ignored))
    {
        QFile::remove(journal);
        if (ask(STEP_CLEAN_UP, QString(), ignored))
            for (const ACTION& action : qAsConst(done))
                if (action.kind != INSTALLED)
                    QFile::remove(old_of(action.path));
    }
    // A journal left behind describes a finished commit: the next open only
    // cleans up after it.
    m_replaced.clear();
    m_removed.clear();
    return !m_crashed;
}

bool KOR_FILE_COMMIT::recover(QString& error, const QString& root, QStringList* notes)
{
    const QDir folder(root);
    const QString journal_path = folder.filePath(journal_name());
    QFile::remove(journal_path + QStringLiteral(".tmp"));
    QFile journal_file(journal_path);
    if (journal_file.exists())
    {
        if (!journal_file.open(QIODevice::ReadOnly))
        {
            error = QStringLiteral("%1: an interrupted change cannot be read: %2")
                        .arg(journal_path, journal_file.errorString());
            return false;
        }
        JOURNAL journal;
        if (!parse_journal(journal_file.readAll(), journal))
        {
            error = QStringLiteral("%1: an interrupted change is described in a damaged journal")
                        .arg(journal_path);
            return false;
        }
        journal_file.close();
        for (const QString& relative : qAsConst(journal.replaced))
        {
            if (!safe_relative(relative))
                continue;
            const QString target = folder.filePath(relative);
            if (!QFileInfo::exists(new_of(target)))
                continue; // in place already
            if (QFileInfo::exists(target) && !QFileInfo::exists(old_of(target)))
                rename_over(target, old_of(target));
            if (!rename_over(new_of(target), target))
            {
                error = QStringLiteral("%1: an interrupted change cannot be completed").arg(target);
                return false;
            }
        }
        for (const QString& relative : qAsConst(journal.removed))
        {
            const QString target = folder.filePath(relative);
            if (safe_relative(relative) && QFileInfo::exists(target))
                rename_over(target, old_of(target));
        }
        sync_folder(root);
        QFile::remove(journal_path);
        if (notes)
            notes->append(QStringLiteral("%1: completed a change that was interrupted").arg(root));
    }
    // Leftovers: new files of commits that never reached their commit point,
    // old files of commits that finished. Commits write the top level and the
    // engine's own "Veld*" folders only.
    QStringList folders{root};
    for (const QString& sub :
         folder.entryList(QStringList(QStringLiteral("Veld*")), QDir::Dirs | QDir::NoDotAndDotDot))
        folders.append(folder.filePath(sub));
    for (const QString& path : qAsConst(folders))
    {
        const QDir scanned(path);
        for (const QString& leftover : scanned.entryList(
                 QStringList{QStringLiteral("*.veld-new"), QStringLiteral("*.veld-old")}, QDir::Files))
            QFile::remove(scanned.filePath(leftover));
    }
    return true;
}
