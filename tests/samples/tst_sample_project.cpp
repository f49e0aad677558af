// A generated sample project as a whole: one seed gives the same files, the
// host's project file leads the session to the database through the project
// paths, the depot holds the history, and nothing already in a folder is
// overwritten.
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"
#include "p4_connection.h"
#include "project_paths.h"
#include "quill_project_file.h"
#include "sample_project.h"
#include "sample_scale.h"
#include "test_folder.h"
#include "test_helpers.h"
#include "veld_data.h"

#include <QDirIterator>
#include <QProcess>
#include <QtTest/QtTest>

namespace
{
// Every file below a project folder but the git folders, with its bytes.
QMap<QString, QByteArray> files_of(const QString& root)
{
    QMap<QString, QByteArray> files;
    QDirIterator it(root, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext())
    {
        const QString path = it.next();
        const QString relative = QDir(root).relativeFilePath(path);
        if (relative.startsWith("depot.git/") || relative.startsWith("workspace/.git/"))
            continue;
        files.insert(relative, ORBIN_TEST::read_file(path));
    }
    return files;
}

QString git(const QString& folder, const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start("git", arguments);
    process.waitForFinished(30000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

QString canonical(const QString& path)
{
    return QFileInfo(path).canonicalFilePath();
}
} // namespace

class TST_SAMPLE_PROJECT : public QObject
{
    Q_OBJECT

private:
    TEST_FOLDER m_folder;
    SAMPLE_LAYOUT m_layout;

private slots:
    void initTestCase()
    {
        const QString error = SAMPLE_PROJECT::generate_small(m_folder.file("first"), &m_layout);
        QVERIFY2(error.isEmpty(), qPrintable(error));
    }

    void one_seed_gives_the_same_files()
    {
        TEST_FOLDER other;
        QVERIFY(SAMPLE_PROJECT::generate_small(other.file("second")).isEmpty());
        const QMap<QString, QByteArray> first = files_of(m_layout.root);
        const QMap<QString, QByteArray> second = files_of(other.file("second"));
        QVERIFY(first.size() > 200);
        QCOMPARE(first.keys(), second.keys());
        for (auto it = first.constBegin(); it != first.constEnd(); ++it)
            QVERIFY2(it.value() == second.value(it.key()), qPrintable("differs: " + it.key()));
        // The history too: same authors, dates and trees give the same commits.
        QCOMPARE(git(m_layout.workspace, {"rev-parse", "HEAD"}),
                 git(other.file("second/workspace"), {"rev-parse", "HEAD"}));
    }

    void the_project_file_leads_the_session_to_the_database()
    {
        LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
        QString error;
        QVERIFY2(QUILL_PROJECT_FILE::read(m_layout.root, paths, error), qPrintable(error));
        LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
        const QString previous = QDir::currentPath();
        QDir::setCurrent(m_folder.path()); // no offline marker here
        {
            VELD_DATA session;
            // No db folder beside the binaries: the session falls back to raw_data/db.
            QVERIFY(!QFileInfo::exists(m_layout.binaries + "/db"));
            QCOMPARE(canonical(session.connect_path()), canonical(m_layout.database));
            QCOMPARE(session.project_root(), canonical(m_layout.branch_root));
            QCOMPARE(canonical(session.design_data_path()), canonical(m_layout.design_data));
            QCOMPARE(canonical(session.csv_import_path()), canonical(m_layout.csv_import));
            QVERIFY2(session.connect_main(error, session.connect_path(), 0), qPrintable(error));
            QVERIFY(session.disconnect_all(error));
        }
        QDir::setCurrent(previous);
        LIBRARY_PROXY::PROJECT_PATHS::clear_current();
        QCOMPARE(canonical(paths.working_data_path), canonical(m_layout.working_data));
        // The localisation folders are found by rewriting the working data path.
        QVERIFY(QFileInfo(QString(m_layout.working_data).replace("working_data", "raw_data/localisation"))
                    .isDir());
    }

    void tab_files_are_utf16_with_crlf()
    {
        // Tab files are UTF-16 with one byte order mark and CR LF line ends.
        const QByteArray tab = ORBIN_TEST::read_file(m_layout.text + "/LOCALISATION_TAB_units.txt");
        QVERIFY(tab.startsWith("\xff\xfe") && !tab.mid(2).startsWith("\xff\xfe"));
        const QString text =
            QString::fromUtf16(reinterpret_cast<const char16_t*>(tab.constData() + 2), (tab.size() - 2) / 2);
        QVERIFY(text.endsWith("\r\n"));
        QCOMPARE(text.split("\r\n", Qt::SkipEmptyParts).first().split('\t').size(), 3);
    }

    void the_depot_holds_the_history()
    {
        QVERIFY2(git(m_layout.workspace, {"status", "--porcelain"}).isEmpty(),
                 "the workspace has no local changes");
        QCOMPARE(git(m_layout.workspace, {"rev-parse", "HEAD"}), git(m_layout.depot, {"rev-parse", "main"}));
        QCOMPARE(git(m_layout.workspace, {"rev-parse", "--abbrev-ref", "@{upstream}"}),
                 QString("origin/main"));
        // The layout change touches interface files only, as the table export
        // dialog expects of a change it exports layouts from.
        const QStringList layout_change =
            git(m_layout.workspace, {"show", "--name-only", "--format=", "HEAD~1"}).split('\n');
        QVERIFY(!layout_change.isEmpty());
        for (const QString& file : layout_change)
            QVERIFY2(file.contains("/UI/"), qPrintable(file));
        QCOMPARE(git(m_layout.workspace, {"show", "--name-only", "--format=", "HEAD"}).split('\n').size(), 2);
    }

    void the_depot_layer_sees_the_workspace_and_its_changes()
    {
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        QSet<QString> changed;
        engine.get_changed_tables(changed, m_layout.database);
        QVERIFY(changed.isEmpty());
        QVERIFY(engine.have_latest(m_layout.database));

        // Change 3 is the layout pass; its files are named below the client root.
        P4_CONNECTION client(true, true, false);
        client.set_start_directory(m_layout.workspace);
        QString error;
        QVERIFY2(client.connect(error, "Orbin", false), qPrintable(error));
        QCOMPARE(client.get_root(), canonical(m_layout.workspace));
        QVector<QString> output;
        QVERIFY2(client.run("describe", {"-s", "3"}, output, QString(), &error), qPrintable(error));
        int layouts = 0;
        for (const QString& line : qAsConst(output))
            if (line.contains("/UI/") && line.contains(".slpui") && !line.contains(".slpui.images"))
            {
                ++layouts;
                QVERIFY2(line.startsWith("//trunk/game/raw_data/UI/"), qPrintable(line));
            }
        QVERIFY(layouts >= 2);

        const QString table = m_layout.database + "/factions.xml";
        const QByteArray before = ORBIN_TEST::read_file(table);
        QVERIFY(
            ORBIN_TEST::write_file(table, QByteArray(before).replace("Gens Valeria", "Gens Valeria Maior")));
        engine.get_changed_tables(changed, m_layout.database);
        QCOMPARE(changed, QSet<QString>{"factions"});
        QVERIFY(ORBIN_TEST::write_file(table, before));
    }

    void a_folder_that_is_not_empty_is_left_alone()
    {
        TEST_FOLDER other;
        const QString kept = other.write("project/notes.txt", "mine");
        const QString error = SAMPLE_PROJECT::generate_small(other.file("project"));
        QVERIFY(error.contains("not empty"));
        QCOMPARE(ORBIN_TEST::read_file(kept), QByteArray("mine"));
        QCOMPARE(QDir(other.file("project")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
    }

    void tools_built_here_are_installed_but_not_versioned()
    {
        TEST_FOLDER other;
        other.write("tools/KILN.release", "#!/bin/sh\nexit 0\n");
        SAMPLE_OPTIONS options;
        options.size = SAMPLE_SIZE::SMALL;
        options.tools_folder = other.file("tools");
        SAMPLE_LAYOUT layout;
        QStringList notes;
        QVERIFY(SAMPLE_PROJECT::generate(other.file("p"), options, &layout, &notes).isEmpty());
        const QFileInfo tool(layout.binaries + "/KILN.release");
        QVERIFY(tool.isFile() && tool.isExecutable());
        QVERIFY(!QFileInfo::exists(layout.binaries + "/Slatepad.UnityRelease"));
        QVERIFY(git(layout.workspace, {"status", "--porcelain"}).isEmpty());
        QVERIFY(notes.join('\n').contains("installed KILN.release"));
    }

    void scale_tables_join_the_database()
    {
        TEST_FOLDER other;
        SAMPLE_OPTIONS options;
        options.size = SAMPLE_SIZE::SMALL;
        options.with_depot = false;
        options.scale_tables = 25;
        options.scale_rows = 5000;
        SAMPLE_LAYOUT layout;
        QVERIFY(SAMPLE_PROJECT::generate(other.file("p"), options, &layout).isEmpty());
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        QVERIFY(engine.connect_without_merge(layout.database, false).isEmpty());
        QMap<QString, bool> names;
        engine.get_table_names(names);
        QVERIFY(names.size() >= 45 + 25 + 1);
        QString error;
        const KOR_TABLE_DATA* big = engine.get_table_data(error, SAMPLE_SCALE::big_table_name());
        QVERIFY2(big, qPrintable(error));
        QCOMPARE(big->record_count(), 5000);
        QVERIFY(big->record_by_key("s0005000"));
        QVERIFY(engine.get_table_data(error, "effect_bundle_001"));
        engine.disconnect();
    }
};

QTEST_MAIN(TST_SAMPLE_PROJECT)
#include "tst_sample_project.moc"
