// The Perforce backend against recorded answers of the command-line client:
// a fake p4 replays them and logs the command lines it was given.

#include "kor_db_perforce.h"
#include "p4_connection.h"
#include "test_rows.h"
#include "vcs_depot.h"
#include "vcs_p4_depot.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QtTest>

using ORBIN_TEST::row;

class TEST_VCS_P4 : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> folder;
    QString root;    // the client workspace
    QString answers; // the fake client's folder

    static QString recordings()
    {
        return qEnvironmentVariable("ORBIN_SOURCE_DIR") + QStringLiteral("/tests/vcs/p4_recordings");
    }

    // Puts the recorded answers of a scenario where the fake client finds them.
    void use(const QString& scenario)
    {
        for (const QString& source : {QStringLiteral("common"), scenario})
        {
            QDir from(recordings() + QLatin1Char('/') + source);
            QVERIFY2(from.exists(), qPrintable(from.path()));
            for (const QString& name : from.entryList(QDir::Files))
                QVERIFY(QFile::copy(from.filePath(name), answers + QLatin1Char('/') + name));
        }
    }

    // The logged calls: the arguments of each, without the working directory;
    // with `verbs_only`, from the verb on (the global options left out).
    QList<QStringList> calls(bool verbs_only = false) const
    {
        QList<QStringList> result;
        QFile log(answers + QStringLiteral("/calls.log"));
        if (!log.open(QIODevice::ReadOnly))
            return result;
        for (const QByteArray& line : log.readAll().split('\n'))
        {
            if (line.isEmpty())
                continue;
            QStringList fields = QString::fromUtf8(line).split(QLatin1Char('\t'));
            fields.removeFirst();
            while (verbs_only && !fields.isEmpty() && fields.first().startsWith(QLatin1String("-z")))
                fields.removeFirst();
            result.append(fields);
        }
        return result;
    }

    // The last call of a verb, from the verb on.
    QStringList last_call(const QString& verb) const
    {
        const QList<QStringList> all = calls(true);
        for (int i = all.size() - 1; i >= 0; --i)
            if (all.at(i).value(0) == verb)
                return all.at(i);
        return {};
    }

    QString input_of(const QString& verb, int call) const
    {
        QFile in(answers + QStringLiteral("/%1.%2.in").arg(verb).arg(call));
        return in.open(QIODevice::ReadOnly) ? QString::fromUtf8(in.readAll()) : QString();
    }

    std::unique_ptr<VCS_DEPOT> depot()
    {
        QString error;
        std::unique_ptr<VCS_DEPOT> opened = VCS_DEPOT::open(error, root + QStringLiteral("/db"), "Orbin");
        if (!opened)
            qWarning().noquote() << error;
        return opened;
    }

private slots:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
        root = QFileInfo(folder->path()).canonicalFilePath() + QStringLiteral("/workspace");
        answers = folder->path() + QStringLiteral("/answers");
        QVERIFY(QDir().mkpath(root + QStringLiteral("/db")) && QDir().mkpath(answers));
        // The client settings file marks the workspace as a Perforce client.
        QFile config(root + QStringLiteral("/.p4config"));
        QVERIFY(config.open(QIODevice::WriteOnly));
        config.write("P4CLIENT=alice_ws\nP4PORT=perforce.example.org:1666\n");
        config.close();
        qputenv(
            "ORBIN_P4",
            (qEnvironmentVariable("ORBIN_SOURCE_DIR") + QStringLiteral("/tests/vcs/fake_p4.sh")).toUtf8());
        qputenv("FAKE_P4_DIR", answers.toUtf8());
        qputenv("FAKE_P4_ROOT", root.toUtf8());
        qunsetenv("ORBIN_VCS");
        qunsetenv("P4CONFIG");
    }

    void cleanup()
    {
        qunsetenv("ORBIN_P4");
        qunsetenv("FAKE_P4_DIR");
        qunsetenv("FAKE_P4_ROOT");
        folder.reset();
    }

    void connection_reads_the_client_from_the_server()
    {
        use("edit_ok");
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(root + QStringLiteral("/db"));
        QString error;
        QVERIFY2(connection.connect(error, "KILN"), qPrintable(error));
        QVERIFY2(calls().isEmpty(), "connecting must not talk to the server");
        QCOMPARE(connection.backend_name(), "perforce");
        QCOMPARE(connection.get_root(), root);
        QCOMPARE(calls().last(), (QStringList{"-zprog=KILN", "-ztag", "info"}));
    }

    void commands_pass_through_data()
    {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("succeeds");
        QTest::addColumn<QString>("last_line");
        row("edit", "edit_ok", "edit", "db/units.xml", true, "");
        row("edit of an unknown file", "edit_refused", "edit", "db/missing.xml", false,
            "@ROOT@/db/missing.xml - file(s) not on client.");
        row("revert of a file not opened", "edit_refused", "revert", "db/units.xml", true,
            "@ROOT@/db/units.xml - file(s) not opened on this client.");
    }

    void commands_pass_through()
    {
        QFETCH(QString, scenario);
        QFETCH(QString, command);
        QFETCH(QString, file);
        QFETCH(bool, succeeds);
        QFETCH(QString, last_line);
        use(scenario);
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(root);
        QString error;
        QVERIFY(connection.connect(error, "Orbin"));
        QVector<QString> output;
        // Windows separators in a file name still reach the client as one path.
        QString target = root + QLatin1Char('/') + file;
        target.replace(QLatin1Char('/'), QLatin1Char('\\')).replace(0, 1, QLatin1Char('/'));
        QCOMPARE(connection.run(command, {target}, output, QString(), &error), succeeds);
        QCOMPARE(calls().last(),
                 (QStringList{"-zprog=Orbin", "-ztag", command, root + QLatin1Char('/') + file}));
        if (succeeds)
        {
            QVERIFY(error.isEmpty());
            if (command == QLatin1String("edit"))
                QCOMPARE(output.first(), "... depotFile //depot/game/raw_data/db/units.xml");
        }
        else
        {
            QCOMPARE(error, QString(last_line).replace("@ROOT@", root));
        }
        if (!last_line.isEmpty())
            QCOMPARE(output.last(), QString(last_line).replace("@ROOT@", root));
    }

    void describe_reads_from_the_client_root()
    {
        use("describe");
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(root);
        QVector<QString> output;
        QVERIFY(connection.run("describe", {"-s", "4711"}, output));
        QCOMPARE(calls().first(), (QStringList{"-ztag", "describe", "-s", "4711"}));
        QCOMPARE(last_call("where"), (QStringList{"where", "//depot/game/raw_data/UI/army/army_panel.slpui",
                                                  "//depot/game/raw_data/UI/army/army_panel.slpui.images",
                                                  "//depot/shared/tools/readme.txt"}));
        const QStringList lines(output.begin(), output.end());
        QVERIFY(lines.first().startsWith(QLatin1String("Change 4711 by carol@carol_ui on ")));
        QVERIFY(lines.contains("\tsecond line of the description"));
        const QStringList files = lines.mid(lines.indexOf("Affected files ...") + 1);
        QVERIFY(files.contains("//raw_data/UI/army/army_panel.slpui#12 edit"));
        QVERIFY(files.contains("//raw_data/UI/army/army_panel.slpui.images#1 add"));
        // A file outside the client keeps its depot path.
        QVERIFY(files.contains("//depot/shared/tools/readme.txt#3 edit"));
    }

    void revision_helpers_build_the_command_lines()
    {
        use("changes");
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(root);
        const QString units = root + QStringLiteral("/db/units.xml");
        QString error;
        int change = 0;
        QVERIFY2(KOR_DB_PERFORCE::get_changelist_number(error, change, units, connection, true),
                 qPrintable(error));
        QCOMPARE(change, 1520);
        QCOMPARE(last_call("changes"), (QStringList{"changes", "-m1", units + QStringLiteral("#have")}));
        QVERIFY(KOR_DB_PERFORCE::get_changelist_number(error, change, units, connection, false));
        QCOMPARE(last_call("changes"), (QStringList{"changes", "-m1", "-s", "submitted", units}));
        QVERIFY(KOR_DB_PERFORCE::get_file_changelist_number(change, 3, units, connection));
        QCOMPARE(last_call("changes"), (QStringList{"changes", "-m1", units + QStringLiteral("#3")}));
        QVERIFY(KOR_DB_PERFORCE::sync_file_to_revision(connection, units, 3));
        QCOMPARE(last_call("sync"), (QStringList{"sync", units + QStringLiteral("#3")}));
    }

    void status_joins_opened_and_loose_changes()
    {
        use("status");
        std::unique_ptr<VCS_DEPOT> client = depot();
        QVERIFY(client);
        QCOMPARE(client->backend_name(), "perforce");
        QString error;
        QVector<VCS_FILE_STATUS> changes;
        QVERIFY2(client->status(error, root + QStringLiteral("/db"), changes), qPrintable(error));
        const QString file_arg = root + QStringLiteral("/db/...");
        QCOMPARE(last_call("fstat"), (QStringList{"fstat", "-Ro", file_arg}));
        QCOMPARE(last_call("diff"), (QStringList{"diff", "-sr", file_arg}));
        QCOMPARE(last_call("reconcile"), (QStringList{"reconcile", "-n", file_arg}));
        QMap<QString, VCS_FILE_STATUS> by_name;
        for (const VCS_FILE_STATUS& status : changes)
            by_name.insert(QFileInfo(status.path).fileName(), status);
        QCOMPARE(by_name.keys(),
                 (QStringList{"heroes.xml", "new_table.xml", "old.xml", "spells.xml", "units.xml"}));
        QCOMPARE(by_name.value("units.xml").change, VCS_ACTION::NONE); // opened, unchanged
        QCOMPARE(by_name.value("units.xml").opened, VCS_ACTION::EDIT);
        QCOMPARE(by_name.value("spells.xml").change, VCS_ACTION::EDIT);
        QCOMPARE(by_name.value("spells.xml").opened_change, 1600);
        QVERIFY(by_name.value("spells.xml").unresolved);
        QCOMPARE(by_name.value("new_table.xml").change, VCS_ACTION::ADD);
        QCOMPARE(by_name.value("heroes.xml").change, VCS_ACTION::EDIT);
        QCOMPARE(by_name.value("heroes.xml").opened, VCS_ACTION::NONE);
        QCOMPARE(by_name.value("old.xml").change, VCS_ACTION::DELETE);
        QCOMPARE(by_name.value("old.xml").path, root + QStringLiteral("/db/old.xml"));
    }

    void unresolved_files_give_readable_revisions()
    {
        use("resolve");
        std::unique_ptr<VCS_DEPOT> client = depot();
        QString error;
        QVector<VCS_UNRESOLVED> open_resolves;
        QVERIFY2(client->unresolved(error, root + QStringLiteral("/db"), open_resolves), qPrintable(error));
        QCOMPARE(open_resolves.size(), 1);
        QCOMPARE(open_resolves.first().path, root + QStringLiteral("/db/spells.xml"));
        QCOMPARE(open_resolves.first().base_revision, "//depot/game/raw_data/db/spells.xml#3");
        QCOMPARE(open_resolves.first().their_revision, "//depot/game/raw_data/db/spells.xml#5");
        QByteArray content;
        bool exists = false;
        QVERIFY(client->read_file(error, open_resolves.first().path, open_resolves.first().base_revision,
                                  content, exists));
        QVERIFY(exists);
        QCOMPARE(content, QByteArray("spells as of revision 3\n"));
        // The content comes untagged, exactly as the depot holds it.
        QCOMPARE(last_call("print"), (QStringList{"print", "-q", "//depot/game/raw_data/db/spells.xml#3"}));
    }

    void lock_held_by_another_is_refused()
    {
        use("lock_held");
        std::unique_ptr<VCS_DEPOT> client = depot();
        QString error;
        QVERIFY(!client->lock(error, root + QStringLiteral("/db")));
        QVERIFY2(error.contains(QLatin1String("locked by bob (workspace bob_ws")), qPrintable(error));
        QCOMPARE(last_call("opened"), (QStringList{"opened", "-a", root + QStringLiteral("/db/orbin.lock")}));
        QVERIFY(!client->unlock(error, root + QStringLiteral("/db")));
        QVERIFY2(error.contains(QLatin1String("not released")), qPrintable(error));
        QVERIFY(last_call("revert").isEmpty());
    }

    void lock_is_an_exclusive_open()
    {
        use("lock_free");
        std::unique_ptr<VCS_DEPOT> client = depot();
        QString error;
        QVERIFY2(client->lock(error, root + QStringLiteral("/db")), qPrintable(error));
        const QString lock_file = root + QStringLiteral("/db/orbin.lock");
        QCOMPARE(last_call("edit"), (QStringList{"edit", "-t", "text+l", lock_file}));
        VCS_LOCK_INFO holder;
        QVERIFY(client->lock_holder(error, root + QStringLiteral("/db"), holder));
        QVERIFY(holder.held);
        QCOMPARE(holder.workspace, "alice_ws");
        QVERIFY2(client->unlock(error, root + QStringLiteral("/db")), qPrintable(error));
        QCOMPARE(last_call("revert"), (QStringList{"revert", lock_file}));
    }

    void submit_goes_through_a_numbered_change()
    {
        use("submit");
        std::unique_ptr<VCS_DEPOT> client = depot();
        QString error;
        int change = 0;
        QVERIFY2(client->new_change(error, "Locked for submit", change), qPrintable(error));
        QCOMPARE(change, 1601);
        const QString form = input_of("change", 2);
        QVERIFY2(form.contains(QLatin1String("Description:\n\tLocked for submit\n")), qPrintable(form));
        QVERIFY2(!form.contains(QLatin1String("\nFiles:")),
                 "the default changelist's files stay where they are");
        QVERIFY(client->open(error, {root + QStringLiteral("/db/units.xml")}, VCS_ACTION::EDIT, change));
        QCOMPARE(last_call("edit"),
                 (QStringList{"edit", "-c", "1601", root + QStringLiteral("/db/units.xml")}));
        int submitted = 0;
        QVERIFY2(client->submit(error, change, "Balance pass", submitted), qPrintable(error));
        QCOMPARE(submitted, 1602);
        QVERIFY(input_of("change", 4).contains(QLatin1String("Description:\n\tBalance pass\n")));
        QCOMPARE(last_call("submit"), (QStringList{"submit", "-c", "1601"}));
    }

    void operations_run_these_command_lines_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("expected"); // the verbs with their arguments, "|" between calls
        QTest::newRow("sync opens loose changes first")
            << "sync" << QStringList{"reconcile @ROOT@/db/...", "sync @ROOT@/db/..."};
        QTest::newRow("revert takes back every local change")
            << "revert" << QStringList{"reconcile @ROOT@/db/...", "revert -w @ROOT@/db/..."};
        QTest::newRow("revert keeping the content only undoes opens")
            << "revert -k" << QStringList{"revert -k @ROOT@/db/..."};
        QTest::newRow("pending changelists of this client")
            << "pending" << QStringList{"info", "changes -l -s pending -c alice_ws"};
    }

    void operations_run_these_command_lines()
    {
        QFETCH(QString, operation);
        QFETCH(QStringList, expected);
        use("sequences");
        std::unique_ptr<VCS_DEPOT> client = depot();
        const QString db = root + QStringLiteral("/db");
        QString error;
        if (operation == QLatin1String("sync"))
        {
            QStringList updated;
            QVERIFY2(client->sync(error, {db + QStringLiteral("/...")}, updated), qPrintable(error));
            QCOMPARE(updated, QStringList{db + QStringLiteral("/units.xml")});
        }
        else if (operation == QLatin1String("revert"))
            QVERIFY2(client->revert(error, {db}, false, true), qPrintable(error));
        else if (operation == QLatin1String("revert -k"))
            QVERIFY2(client->revert(error, {db}, true, false), qPrintable(error));
        else
        {
            QVector<VCS_CHANGE_INFO> pending;
            QVERIFY2(client->pending_changes(error, pending), qPrintable(error));
            QCOMPARE(pending.size(), 1);
            QCOMPARE(pending.first().number, 1610);
            QCOMPARE(pending.first().description,
                     QStringLiteral("Database changes locked for submit: ") + db);
        }
        QStringList made;
        for (const QStringList& call : calls(true))
            made.append(call.join(QLatin1Char(' ')));
        QCOMPARE(made, expected.replaceInStrings("@ROOT@", root));
    }

    void missing_client_program_is_a_clear_error()
    {
        qputenv("ORBIN_P4", "/nonexistent/p4");
        QString error;
        std::unique_ptr<VCS_DEPOT> client = VCS_DEPOT::open(error, root);
        QVERIFY(!client);
        QVERIFY2(error.contains(QLatin1String("Perforce command-line client")) &&
                     error.contains(QLatin1String("not installed")),
                 qPrintable(error));
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(root);
        QVERIFY(!connection.connect(error, QString()));
        QVERIFY(connection.get_root().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TEST_VCS_P4)
#include "test_vcs_p4.moc"
