#pragma once

// Writes a set of files of a database folder as one unit: after a crash or a
// failure the folder holds either all the old files or all the new ones,
// never a mix.
//
// Each new file is written beside its target as "<file>.veld-new" and synced.
// A journal (".veld_journal") listing every replacement and removal is then
// written and renamed into place: that is the commit point. The old files are
// renamed to "<file>.veld-old", the new ones into place, and the journal is
// removed. A failure before the commit point removes the new files; a failure
// after it renames everything back. Opening a folder whose journal survived a
// crash completes the commit (recover()).

#include <QString>
#include <QStringList>

#include <functional>

class QIODevice;

class KOR_FILE_COMMIT
{
public:
    // The steps at which a commit can be made to fail, for tests.
    enum STEP
    {
        STEP_WRITE_NEW,      // writing a "<file>.veld-new"
        STEP_WRITE_JOURNAL,  // writing and placing the journal (the commit point)
        STEP_BACKUP_OLD,     // renaming an old file to "<file>.veld-old"
        STEP_INSTALL_NEW,    // renaming a new file into place
        STEP_REMOVE,         // moving a removed file aside
        STEP_REMOVE_JOURNAL, // removing the journal
        STEP_CLEAN_UP        // deleting the old files
    };
    enum FAULT
    {
        FAULT_NONE,
        FAULT_FAIL, // the step fails as an I/O error would
        FAULT_CRASH // the process stops dead: nothing more is done, nothing cleaned
    };
    typedef std::function<FAULT(STEP step, const QString& relative_path)> FAULT_HOOK;
    // Installs a hook asked before every step (tests only); an empty hook
    // removes it.
    static void set_fault_hook(const FAULT_HOOK& hook);

    explicit KOR_FILE_COMMIT(const QString& root);
    ~KOR_FILE_COMMIT();
    KOR_FILE_COMMIT(const KOR_FILE_COMMIT&) = delete;
    KOR_FILE_COMMIT& operator=(const KOR_FILE_COMMIT&) = delete;

    // Writes the new content of a file (relative to the root) through a
    // writer function.
    bool stage(QString& error, const QString& relative_path,
               const std::function<bool(QIODevice& device, QString& error)>& writer);
    bool stage_bytes(QString& error, const QString& relative_path, const QByteArray& bytes);
    // The file is to be removed by the commit (nothing happens if it is absent).
    void stage_removal(const QString& relative_path);
    bool has_changes() const { return !m_replaced.isEmpty() || !m_removed.isEmpty(); }
    const QStringList& replaced_files() const { return m_replaced; }
    const QStringList& removed_files() const { return m_removed; }

    // Makes every staged change at once; on false nothing changed on disk
    // (or, if even undoing failed, the journal completes the commit when the
    // folder is next opened, as the error says).
    bool commit(QString& error);
    // Drops what was staged.
    void abandon();

    // Completes or undoes an interrupted commit of a folder and removes the
    // leftovers of finished ones. `notes` receives what was done.
    static bool recover(QString& error, const QString& root, QStringList* notes);

    static QString journal_name() { return QStringLiteral(".veld_journal"); }

private:
    QString path_of(const QString& relative) const;
    bool ask(STEP step, const QString& relative, QString& error);

    QString m_root;
    QStringList m_replaced;
    QStringList m_removed;
    bool m_crashed = false;
};
