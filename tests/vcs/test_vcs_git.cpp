// The depot layer on real git: two workspaces (clones) of one bare depot.

#include "git_sandbox.h"

#include "kor_db_perforce.h"
#include "p4_connection.h"
#include "test_rows.h"
#include "vcs_depot.h"
#include "vcs_ztag_record.h"

#include <QStandardPaths>
#include <QtTest/QtTest>

using ORBIN_TEST::row;

namespace
{
const QByteArray units_v1("<units>\n<unit key=\"archer\"/>\n</units>\n");
const QByteArray notes_v1("a\nb\nc\nd\ne\n");

QString canonical(const QString& path)
{
    return QFileInfo(path).canonicalFilePath();
}

QStringList lines_of(const QVector<QString>& output)
{
    return QStringList(output.begin(), output.end());
}

QVector<VCS_ZTAG_RECORD> records_of(const QStringList& output)
{
    return VCS_ZTAG_RECORD::parse(output);
}

// Collects what the line callback of P4_CONNECTION::run hands over.
void collect_line(int level, const char* line, void* user_data)
{
    static_cast<QList<QPair<int, QString>>*>(user_data)->append(qMakePair(level, QString::fromUtf8(line)));
}
} // namespace

class TEST_VCS_GIT : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GIT_SANDBOX> sandbox;
    QString a; // first workspace
    QString b; // second workspace

    // Runs a verb in a workspace; the output, and whether it worked.
    QStringList run(const QString& workspace, const QString& command, const QStringList& arguments,
                    bool* ok = nullptr, const QString& input = QString())
    {
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(workspace);
        QString error;
        QVector<QString> output;
        bool worked =
            connection.connect(error, "Orbin") && connection.run(command, arguments, output, input, &error);
        if (ok)
            *ok = worked;
        else if (!worked)
            qWarning().noquote() << command << arguments << "failed:" << error << lines_of(output);
        return lines_of(output);
    }

    std::unique_ptr<VCS_DEPOT> depot(const QString& workspace)
    {
        QString error;
        std::unique_ptr<VCS_DEPOT> opened = VCS_DEPOT::open(error, workspace);
        if (!opened)
            qWarning().noquote() << error;
        return opened;
    }

    QString file(const QString& workspace, const QString& name) const
    {
        return workspace + QLatin1Char('/') + name;
    }

private slots:
    void initTestCase()
    {
        if (!GIT_SANDBOX::available())
            QSKIP("git is not installed");
    }

    void init()
    {
        sandbox = std::make_unique<GIT_SANDBOX>();
        QVERIFY(sandbox->valid());
        QVERIFY(sandbox->create_depot({{"db/units.xml", units_v1},
                                       {"db/notes.txt", notes_v1},
                                       {"db/Veld_validation.xml", QByteArray("<v/>\n")}}));
        a = canonical(sandbox->clone("a"));
        b = canonical(sandbox->clone("b"));
        QVERIFY(!a.isEmpty() && !b.isEmpty());
    }

    void cleanup() { sandbox.reset(); }

    void connection_finds_the_workspace()
    {
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(a + QStringLiteral("/db"));
        QString error;
        QVERIFY2(connection.connect(error, "KILN"), qPrintable(error));
        QCOMPARE(connection.get_root(), a);
        QCOMPARE(connection.backend_name(), "git");

        const QVector<VCS_ZTAG_RECORD> info = records_of(run(a, "info", {}));
        QCOMPARE(info.size(), 1);
        QCOMPARE(info.first().value("clientRoot"), a);
        const QVector<VCS_ZTAG_RECORD> other = records_of(run(b, "info", {}));
        QVERIFY(info.first().value("clientName") != other.first().value("clientName"));

        // A file argument in another workspace takes the command there.
        const QVector<VCS_ZTAG_RECORD> have = records_of(run(a, "have", {file(b, "db/units.xml")}));
        QCOMPARE(have.size(), 1);
        QCOMPARE(have.first().value("path"), file(b, "db/units.xml"));
        QCOMPARE(have.first().value("haveRev"), "1");
    }

    void outside_a_workspace_is_a_clear_error_data()
    {
        QTest::addColumn<QString>("git_program");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain folder")
            << QString() << QStringLiteral("not in a workspace under version control");
        QTest::newRow("git missing") << QStringLiteral("/nonexistent/git")
                                     << QStringLiteral("could not be started");
    }

    void outside_a_workspace_is_a_clear_error()
    {
        QFETCH(QString, git_program);
        QFETCH(QString, expected);
        const QString plain = sandbox->path("plain");
        QDir().mkpath(plain);
        if (!git_program.isEmpty())
            qputenv("ORBIN_GIT", git_program.toUtf8());
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(git_program.isEmpty() ? plain : a);
        QString error;
        const bool connected = connection.connect(error, "Orbin");
        QVector<QString> output;
        const bool ran = connection.run("sync", {}, output);
        QList<QPair<int, QString>> called;
        const bool ran_with_callback = connection.run("sync", {}, collect_line, &called);
        const QString root = connection.get_root();
        qunsetenv("ORBIN_GIT");
        QVERIFY(!ran_with_callback);
        QVERIFY(!called.isEmpty());
        QCOMPARE(called.last().first, 2);
        QVERIFY(called.last().second.contains(expected));
        QVERIFY(!connected);
        QVERIFY2(error.contains(expected), qPrintable(error));
        QVERIFY(!ran);
        QVERIFY2(!output.isEmpty() && output.last().contains(expected),
                 qPrintable(lines_of(output).join('\n')));
        QVERIFY(root.isEmpty());
    }

    void submit_then_sync_shows_the_change()
    {
        const QString units_a = file(a, "db/units.xml");
        run(a, "edit", {units_a});
        const QByteArray units_v2("<units>\n<unit key=\"archer\"/>\n<unit key=\"knight\"/>\n</units>\n");
        GIT_SANDBOX::write(units_a, units_v2);
        bool ok = false;
        const QStringList submitted = run(a, "submit", {"-d", "More units"}, &ok);
        QVERIFY2(ok, qPrintable(submitted.join('\n')));
        QVERIFY2(submitted.contains("Change 2 submitted."), qPrintable(submitted.join('\n')));
        QVERIFY(run(a, "opened", {}).join('\n').contains(QLatin1String("not opened")));

        const QVector<VCS_ZTAG_RECORD> synced = records_of(run(b, "sync", {}));
        QCOMPARE(synced.size(), 1);
        QCOMPARE(synced.first().value("depotFile"), "//db/units.xml");
        QCOMPARE(synced.first().value("action"), "updated");
        QCOMPARE(synced.first().value("rev"), "2");
        QCOMPARE(GIT_SANDBOX::read(file(b, "db/units.xml")), units_v2);
        P4_CONNECTION quiet(true, true, false);
        quiet.set_start_directory(b);
        QList<QPair<int, QString>> called;
        QVERIFY(quiet.run("sync", {}, collect_line, &called));
        QCOMPARE(called.size(), 1);
        QCOMPARE(called.first().first, 1); // a warning, and no failure
        QVERIFY(called.first().second.contains(QLatin1String("up-to-date")));

        // The shape the layout export reads: "//" stands for the client root.
        const QStringList described = run(b, "describe", {"-s", "2"});
        QVERIFY(described.first().startsWith(QLatin1String("Change 2 by ")));
        QVERIFY(described.contains("\tMore units"));
        const int affected = described.indexOf("Affected files ...");
        QVERIFY(affected > 0);
        QVERIFY(described.mid(affected).contains("//db/units.xml#2 edit"));

        const QVector<VCS_ZTAG_RECORD> latest = records_of(run(b, "changes", {"-m1", file(b, "db/...")}));
        QCOMPARE(latest.size(), 1);
        QCOMPARE(latest.first().value("change"), "2");
        QCOMPARE(latest.first().value("desc").trimmed(), "More units");

        // Numbers only grow, whichever workspace submits.
        const QString notes_b = file(b, "db/notes.txt");
        run(b, "edit", {notes_b});
        GIT_SANDBOX::write(notes_b, "changed\n");
        QVERIFY(run(b, "submit", {"-d", "Notes"}).contains("Change 3 submitted."));
        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(a);
        QString error;
        int change = 0;
        QVERIFY(KOR_DB_PERFORCE::get_changelist_number(error, change, units_a, connection, true));
        QCOMPARE(change, 2);
        QVERIFY(KOR_DB_PERFORCE::get_changelist_number(error, change, notes_b, connection, false));
        QCOMPARE(change, 3);
    }

    void sync_with_local_edits_then_resolve_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QByteArray>("local");
        QTest::addColumn<QByteArray>("theirs");
        QTest::addColumn<QByteArray>("expected");
        QTest::addColumn<bool>("still_unresolved");
        const QByteArray mine("a\nB\nc\nd\ne\n"), theirs("a\nb\nc\nd\nE\n");
        row("accept theirs", "-at", mine, theirs, theirs, false);
        row("accept yours", "-ay", mine, theirs, mine, false);
        row("merge apart", "-am", mine, theirs, QByteArray("a\nB\nc\nd\nE\n"), false);
        row("merge conflict keeps yours", "-am", QByteArray("a\nX\nc\nd\ne\n"), QByteArray("a\nY\nc\nd\ne\n"),
            QByteArray("a\nX\nc\nd\ne\n"), true);
    }

    void sync_with_local_edits_then_resolve()
    {
        QFETCH(QString, how);
        QFETCH(QByteArray, local);
        QFETCH(QByteArray, theirs);
        QFETCH(QByteArray, expected);
        QFETCH(bool, still_unresolved);

        const QString notes_b = file(b, "db/notes.txt");
        GIT_SANDBOX::write(notes_b, local); // edited without opening: git files are writable
        QVERIFY(sandbox->push_from_seed("db/notes.txt", theirs, "Their notes"));

        const QStringList synced = run(b, "sync", {});
        QVERIFY2(synced.join('\n').contains(QLatin1String("must resolve")), qPrintable(synced.join('\n')));
        QCOMPARE(GIT_SANDBOX::read(notes_b), local); // nothing local is lost by a sync
        QCOMPARE(records_of(run(b, "resolve", {"-n"})).size(), 1);

        run(b, "resolve", {how, notes_b});
        QCOMPARE(GIT_SANDBOX::read(notes_b), expected);
        QCOMPARE(records_of(run(b, "resolve", {"-n"})).size(), still_unresolved ? 1 : 0);
        std::unique_ptr<VCS_DEPOT> client = depot(b);
        QVector<VCS_UNRESOLVED> left;
        QString error;
        QVERIFY(client->unresolved(error, b + QStringLiteral("/db"), left));
        QCOMPARE(left.size(), still_unresolved ? 1 : 0);
        if (still_unresolved)
        {
            QByteArray base;
            QByteArray their_content;
            bool exists = false;
            QVERIFY(client->read_file(error, notes_b, left.first().base_revision, base, exists) && exists);
            QCOMPARE(base, notes_v1);
            QVERIFY(client->read_file(error, notes_b, left.first().their_revision, their_content, exists) &&
                    exists);
            QCOMPARE(their_content, theirs);
        }
    }

    void sync_to_older_change_and_revision()
    {
        const QString units_a = file(a, "db/units.xml");
        const QByteArray units_v2("<units/>\n");
        QVERIFY(sandbox->push_from_seed("db/units.xml", units_v2, "Second"));
        run(a, "sync", {});
        QCOMPARE(GIT_SANDBOX::read(units_a), units_v2);

        P4_CONNECTION connection(true, true, false);
        connection.set_start_directory(a);
        QString error;
        QVERIFY(connection.connect(error, QString()));
        QVector<QString> output;
        QVERIFY(connection.run("sync", {units_a + QStringLiteral("@1")}, output));
        QCOMPARE(GIT_SANDBOX::read(units_a), units_v1);
        int change = 0;
        QVERIFY2(KOR_DB_PERFORCE::get_changelist_number(error, change, units_a, connection, true),
                 qPrintable(error));
        QCOMPARE(change, 1);
        QCOMPARE(records_of(run(a, "have", {units_a})).first().value("haveRev"), "1");
        // A file at an older revision is nothing to submit.
        std::unique_ptr<VCS_DEPOT> client = depot(a);
        QVector<VCS_FILE_STATUS> changed;
        QVERIFY(client->status(error, a + QStringLiteral("/db"), changed));
        QVERIFY(changed.isEmpty());

        QVERIFY(KOR_DB_PERFORCE::sync_file_to_revision(connection, units_a, 2));
        QCOMPARE(GIT_SANDBOX::read(units_a), units_v2);
        QVERIFY(KOR_DB_PERFORCE::get_file_changelist_number(change, 1, units_a, connection));
        QCOMPARE(change, 1);
        QVERIFY(KOR_DB_PERFORCE::get_file_changelist_number(change, 2, units_a, connection));
        QCOMPARE(change, 2);
        QVERIFY(KOR_DB_PERFORCE::get_changelist_number(error, change, units_a, connection, true));
        QCOMPARE(change, 2);
        // The rest of the depot moved on while one file stood still.
        QVERIFY(connection.run("sync", {units_a + QStringLiteral("#1")}, output));
        QVERIFY(sandbox->push_from_seed("db/notes.txt", "new\n", "Third"));
        QVERIFY(connection.run("sync", {file(a, "db/notes.txt")}, output));
        QCOMPARE(GIT_SANDBOX::read(file(a, "db/notes.txt")), QByteArray("new\n"));
        QCOMPARE(GIT_SANDBOX::read(units_a), units_v1);
        QVERIFY(connection.run("sync", {}, output));
        QCOMPARE(GIT_SANDBOX::read(units_a), units_v2);
    }

    void revert_restores_exactly_data()
    {
        QTest::addColumn<QString>("open_as"); // empty: changed without opening
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("flags");
        QTest::addColumn<QByteArray>("expected"); // "<missing>" when the file is gone
        QTest::addColumn<QString>("action");
        const QStringList none;
        const QByteArray changed("changed\n");
        row("changed file", "", "db/units.xml", none, units_v1, "reverted");
        row("opened for edit", "edit", "db/units.xml", none, units_v1, "reverted");
        row("keep content", "edit", "db/units.xml", QStringList{"-k"}, changed, "reverted");
        row("opened for delete", "delete", "db/units.xml", none, units_v1, "reverted");
        row("opened for add", "add", "db/new.xml", none, changed, "abandoned");
        row("add wiped", "add", "db/new.xml", QStringList{"-w"}, QByteArray("<missing>"), "abandoned");
    }

    void revert_restores_exactly()
    {
        QFETCH(QString, open_as);
        QFETCH(QString, name);
        QFETCH(QStringList, flags);
        QFETCH(QByteArray, expected);
        QFETCH(QString, action);
        const QString target = file(a, name);
        if (open_as != QLatin1String("delete"))
            GIT_SANDBOX::write(target, "changed\n");
        if (!open_as.isEmpty())
            run(a, open_as, {target});
        const QVector<VCS_ZTAG_RECORD> reverted = records_of(run(a, "revert", flags + QStringList{target}));
        QCOMPARE(reverted.size(), 1);
        QCOMPARE(reverted.first().value("action"), action);
        QCOMPARE(GIT_SANDBOX::read(target), expected);
        QVERIFY(records_of(run(a, "opened", {})).isEmpty());
    }

    void submit_refuses_out_of_date_and_loses_nothing()
    {
        const QString notes_a = file(a, "db/notes.txt");
        const QString notes_b = file(b, "db/notes.txt");
        run(a, "edit", {notes_a});
        GIT_SANDBOX::write(notes_a, "A\nb\nc\nd\ne\n");
        run(b, "edit", {notes_b});
        GIT_SANDBOX::write(notes_b, "a\nb\nc\nd\nB\n");
        bool ok = false;
        run(a, "submit", {"-d", "From a"}, &ok);
        QVERIFY(ok);

        const QStringList refused = run(b, "submit", {"-d", "From b"}, &ok);
        QVERIFY(!ok);
        QVERIFY2(refused.join('\n').contains(QLatin1String("Out of date")), qPrintable(refused.join('\n')));
        QCOMPARE(GIT_SANDBOX::read(notes_b), QByteArray("a\nb\nc\nd\nB\n"));
        QCOMPARE(records_of(run(b, "opened", {})).size(), 1);

        run(b, "sync", {});
        run(b, "resolve", {"-am"});
        QCOMPARE(GIT_SANDBOX::read(notes_b), QByteArray("A\nb\nc\nd\nB\n"));
        const QStringList submitted = run(b, "submit", {"-d", "From b"}, &ok);
        QVERIFY2(ok, qPrintable(submitted.join('\n')));
        run(a, "sync", {});
        QCOMPARE(GIT_SANDBOX::read(notes_a), QByteArray("A\nb\nc\nd\nB\n"));
    }

    void refused_push_keeps_local_work()
    {
        const QString hook = sandbox->depot() + QStringLiteral("/hooks/pre-receive");
        GIT_SANDBOX::write(hook, "#!/bin/sh\necho 'depot closed for maintenance' >&2\nexit 1\n");
        QFile::setPermissions(hook, QFile::permissions(hook) | QFileDevice::ExeOwner);
        const QString units_b = file(b, "db/units.xml");
        run(b, "edit", {units_b});
        GIT_SANDBOX::write(units_b, "mine\n");
        bool ok = true;
        const QStringList refused = run(b, "submit", {"-d", "Blocked"}, &ok);
        QVERIFY(!ok);
        QVERIFY2(refused.join('\n').contains(QLatin1String("refused")), qPrintable(refused.join('\n')));
        QCOMPARE(GIT_SANDBOX::read(units_b), QByteArray("mine\n"));
        QCOMPARE(records_of(run(b, "opened", {})).size(), 1);
        QVERIFY(QFile::remove(hook));
        run(b, "submit", {"-d", "Open again"}, &ok);
        QVERIFY(ok);
    }

    void lock_taken_by_one_refuses_the_other()
    {
        std::unique_ptr<VCS_DEPOT> first = depot(a);
        std::unique_ptr<VCS_DEPOT> second = depot(b);
        const QString db_a = a + QStringLiteral("/db");
        const QString db_b = b + QStringLiteral("/db");
        QString error;
        VCS_LOCK_INFO holder;
        QVERIFY(second->lock_holder(error, db_b, holder));
        QVERIFY(!holder.held);

        QVERIFY2(first->lock(error, db_a), qPrintable(error));
        QVERIFY2(first->lock(error, db_a), qPrintable(error)); // already ours
        QVERIFY(!second->lock(error, db_b));
        QVERIFY2(error.contains(first->workspace_name()) && error.contains(first->user_name()),
                 qPrintable(error));
        QVERIFY(second->lock_holder(error, db_b, holder));
        QVERIFY(holder.held);
        QCOMPARE(holder.workspace, first->workspace_name());
        QVERIFY(holder.since.isValid());

        QVERIFY(!second->unlock(error, db_b));
        QVERIFY2(error.contains(QLatin1String("not released")), qPrintable(error));
        QVERIFY2(first->unlock(error, db_a), qPrintable(error));
        QVERIFY2(first->unlock(error, db_a), qPrintable(error)); // nothing held is no failure
        QVERIFY2(second->lock(error, db_b), qPrintable(error));
        QVERIFY(!first->lock(error, db_a));
        QVERIFY(second->unlock(error, db_b));
    }

    void status_sees_changes_opened_or_not()
    {
        GIT_SANDBOX::write(file(a, "db/units.xml"), "edited\n");
        GIT_SANDBOX::write(file(a, "db/new_table.xml"), "<new/>\n");
        QVERIFY(QFile::remove(file(a, "db/notes.txt")));
        run(a, "edit", {file(a, "db/Veld_validation.xml")});
        GIT_SANDBOX::write(file(a, "outside.txt"), "not in the database\n");

        std::unique_ptr<VCS_DEPOT> client = depot(a);
        QString error;
        QVector<VCS_FILE_STATUS> changes;
        QVERIFY2(client->status(error, a + QStringLiteral("/db"), changes), qPrintable(error));
        QMap<QString, QPair<VCS_ACTION, VCS_ACTION>> seen;
        for (const VCS_FILE_STATUS& status : changes)
            seen.insert(status.path.mid(a.size() + 1), qMakePair(status.change, status.opened));
        QCOMPARE(seen.size(), 4);
        QCOMPARE(seen.value(QStringLiteral("db/units.xml")), qMakePair(VCS_ACTION::EDIT, VCS_ACTION::NONE));
        QCOMPARE(seen.value("db/new_table.xml"), qMakePair(VCS_ACTION::ADD, VCS_ACTION::NONE));
        QCOMPARE(seen.value(QStringLiteral("db/notes.txt")), qMakePair(VCS_ACTION::DELETE, VCS_ACTION::NONE));
        QCOMPARE(seen.value("db/Veld_validation.xml"), qMakePair(VCS_ACTION::NONE, VCS_ACTION::EDIT));

        QStringList incoming;
        QVERIFY(client->incoming(error, a + QStringLiteral("/db"), incoming));
        QVERIFY(incoming.isEmpty());
        QVERIFY(sandbox->push_from_seed("db/notes.txt", "theirs\n", "Theirs"));
        QVERIFY(client->incoming(error, a + QStringLiteral("/db"), incoming));
        QCOMPARE(incoming, QStringList{file(a, "db/notes.txt")});
        int have = 0;
        int head = 0;
        QVERIFY(client->have_change(error, a + QStringLiteral("/db"), have));
        QVERIFY(client->head_change(error, a + QStringLiteral("/db"), head));
        QCOMPARE(have, 1);
        QCOMPARE(head, 2);
    }

    void pending_changelists_are_renumbered_on_submit()
    {
        const QString units_a = file(a, "db/units.xml");
        const QString form = "Change:\tnew\n\nDescription:\n\tLocked work\n\tsecond line\n";
        QStringList created = run(a, "change", {"-i"}, nullptr, form);
        QVERIFY2(created.contains("Change 2 created."), qPrintable(created.join('\n')));
        run(a, "edit", {"-c", "2", units_a});
        GIT_SANDBOX::write(units_a, "locked work\n");
        const QVector<VCS_ZTAG_RECORD> opened = records_of(run(a, "opened", {"-c", "2"}));
        QCOMPARE(opened.size(), 1);
        QCOMPARE(opened.first().value("change"), "2");
        QVERIFY(run(a, "describe", {"-s", "2"}).first().contains(QLatin1String("*pending*")));

        // Someone else submits first: the pending number is taken.
        QVERIFY(sandbox->push_from_seed("db/notes.txt", "other\n", "Other work"));
        bool ok = false;
        const QStringList submitted = run(a, "submit", {"-c", "2"}, &ok);
        QVERIFY2(ok, qPrintable(submitted.join('\n')));
        QVERIFY2(submitted.contains("Change 2 renamed change 3 and submitted."),
                 qPrintable(submitted.join('\n')));
        const QStringList described = run(b, "describe", {"-s", "3"});
        QVERIFY(described.contains("\tsecond line"));
        // The workspace has the other submit's file at the revision it had.
        QCOMPARE(GIT_SANDBOX::read(file(a, "db/notes.txt")), notes_v1);
        QVERIFY(records_of(run(a, "opened", {})).isEmpty());
    }

    void export_at_an_older_change_matches_that_change()
    {
        QVERIFY(sandbox->push_from_seed("db/units.xml", "<units/>\n", "Second"));
        QVERIFY(sandbox->push_from_seed("db/added.xml", "<added/>\n", "Third"));
        std::unique_ptr<VCS_DEPOT> client = depot(a);
        QString error;
        for (int change : {1, 3})
        {
            const QString target = sandbox->path(QStringLiteral("copy%1").arg(change));
            QDir().mkpath(target);
            QVERIFY2(client->export_files(error, a + QStringLiteral("/db"), change, target),
                     qPrintable(error));
            QCOMPARE(GIT_SANDBOX::read(target + QStringLiteral("/units.xml")),
                     change == 1 ? units_v1 : QByteArray("<units/>\n"));
            QCOMPARE(QFileInfo::exists(target + QStringLiteral("/added.xml")), change == 3);
            QCOMPARE(GIT_SANDBOX::read(target + QStringLiteral("/notes.txt")), notes_v1);
        }
        QVERIFY(!client->export_files(error, a + QStringLiteral("/db"), 9, sandbox->path("copy9")));
        QVERIFY2(error.contains(QLatin1String("unknown")), qPrintable(error));
        // The workspace itself did not move.
        QCOMPARE(GIT_SANDBOX::read(file(a, "db/units.xml")), units_v1);
    }
};

QTEST_GUILESS_MAIN(TEST_VCS_GIT)
#include "test_vcs_git.moc"
