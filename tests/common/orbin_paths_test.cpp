#include "orbin_paths.h"
#include "test_rows.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using ORBIN_TEST::row;

class ORBIN_PATHS_TEST : public QObject
{
    Q_OBJECT

private:
    static bool make_file(const QString& path, bool executable)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return false;
        file.write("#!/bin/sh\nexit 0\n");
        file.close();
        QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner;
        if (executable)
            permissions |= QFile::ExeOwner;
        return file.setPermissions(permissions);
    }

    QByteArray m_saved_path;

private slots:
    void init() { m_saved_path = qgetenv("PATH"); }
    void cleanup() { qputenv("PATH", m_saved_path); }

    void conversions_data()
    {
        QTest::addColumn<QString>("windows");
        QTest::addColumn<QString>("native");
        row("leading separator", "\\merge_log", "/merge_log");
        row("nested literal", "\\kiln\\export_changes_from_database_editor_configuration.xml",
            "/kiln/export_changes_from_database_editor_configuration.xml");
        row("client root keeps its trailing separator", "D:\\workspaces\\game\\", "D:/workspaces/game/");
        row("already native", "/home/user/db", "/home/user/db");
        row("empty", "", "");
    }

    void conversions()
    {
        QFETCH(QString, windows);
        QFETCH(QString, native);
        QCOMPARE(ORBIN_PATHS::to_native(windows), native);
        if (!windows.contains(QLatin1Char('/')))
            QCOMPARE(ORBIN_PATHS::to_windows(native), windows);
    }

    void join_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("literal");
        QTest::addColumn<QString>("joined");
        row("home and merge_log", "/home/u", "\\merge_log", "/home/u/merge_log");
        row("base with separator, literal without", "/p/bin/", "kiln\\export.xml", "/p/bin/kiln/export.xml");
        row("both with separator", "/p/bin/", "\\kiln\\export.xml", "/p/bin/kiln/export.xml");
        row("neither with separator", "/p/db", "schema_changes_requests", "/p/db/schema_changes_requests");
        row("windows base", "D:\\ws\\", "game\\raw_data", "D:/ws/game/raw_data");
        row("empty base", "", "\\merge_log", "/merge_log");
        row("empty literal", "/p/bin/", "", "/p/bin/");
    }

    void join()
    {
        QFETCH(QString, base);
        QFETCH(QString, literal);
        QFETCH(QString, joined);
        QCOMPARE(ORBIN_PATHS::join(base, literal), joined);
    }

    void executable_names_data()
    {
        QTest::addColumn<QString>("windows");
        QTest::addColumn<QString>("native");
        row("dots before the suffix", "KILN.release.exe", "KILN.release");
        row("upper case suffix", "wget114.EXE", "wget114");
        row("no suffix", "wget", "wget");
        row("suffix inside the name", "tool.exe.bak", "tool.exe.bak");
    }

    void executable_names()
    {
        QFETCH(QString, windows);
        QFETCH(QString, native);
        QCOMPARE(ORBIN_PATHS::executable_name(windows), native);
    }

    // Where a tool named the Windows way is found: the given folder first, then
    // PATH, else where it would be in the folder.
    void executable_lookup()
    {
        QTemporaryDir folder;
        QTemporaryDir on_path;
        QVERIFY(folder.isValid() && on_path.isValid());
        qputenv("PATH", on_path.path().toLocal8Bit() + ':' + m_saved_path);

        QVERIFY(make_file(folder.filePath("KILN.release"), true));
        QCOMPARE(ORBIN_PATHS::executable("KILN.release.exe", folder.path()), folder.filePath("KILN.release"));

        // Present but not executable in the folder: PATH wins.
        QVERIFY(make_file(folder.filePath("Slatepad.UnityRelease"), false));
        QVERIFY(make_file(on_path.filePath("Slatepad.UnityRelease"), true));
        QCOMPARE(ORBIN_PATHS::executable("Slatepad.UnityRelease.exe", folder.path()),
                 on_path.filePath("Slatepad.UnityRelease"));

        // Nowhere: the path in the folder, which does not exist, so callers'
        // existence checks see the tool as absent.
        const QString missing = ORBIN_PATHS::executable("orbin_no_such_tool.exe", folder.path());
        QCOMPARE(missing, folder.filePath("orbin_no_such_tool"));
        QVERIFY(!QFileInfo::exists(missing));
        QCOMPARE(ORBIN_PATHS::executable("orbin_no_such_tool.exe", QString()),
                 QStringLiteral("orbin_no_such_tool"));

        // A folder with a trailing separator, as project paths have.
        QCOMPARE(ORBIN_PATHS::executable("KILN.release.exe", folder.path() + "/"),
                 folder.filePath("KILN.release"));
    }
};

QTEST_GUILESS_MAIN(ORBIN_PATHS_TEST)
#include "orbin_paths_test.moc"
