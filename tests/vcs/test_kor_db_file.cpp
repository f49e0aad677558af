// Shelves of a database in a git workspace: named copies of the local
// changes, kept outside the database folder.

#include "git_sandbox.h"

#include "kor_db_file.h"
#include "progress_callback.h"
#include "vcs_depot.h"

#include "progress_report_list.h"

#include <QStandardPaths>
#include <QtTest/QtTest>

namespace
{
const QByteArray units_v1("<units>\n<unit key=\"archer\"/>\n</units>\n");
const QByteArray spells_v1("<spells/>\n");
} // namespace

class TEST_KOR_DB_FILE : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GIT_SANDBOX> sandbox;
    QString workspace;
    QString db;

    QString file(const QString& name) const { return db + QLatin1Char('/') + name; }

    // An edit, an added table and a deleted one.
    void make_changes()
    {
        GIT_SANDBOX::write(file(QStringLiteral("units.xml")), "<units>\n<unit key=\"knight\"/>\n</units>\n");
        GIT_SANDBOX::write(file(QStringLiteral("heroes.xml")), "<heroes/>\n");
        QVERIFY(QFile::remove(file(QStringLiteral("spells.xml"))));
    }

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("git")).isEmpty())
            QSKIP("git is not installed");
    }

    void init()
    {
        KOR_DB_FILE::set_single_db_mode(false);
        sandbox = std::make_unique<GIT_SANDBOX>();
        QVERIFY(sandbox->create_depot({{QStringLiteral("raw_data/db/units.xml"), units_v1},
                                       {QStringLiteral("raw_data/db/spells.xml"), spells_v1}}));
        workspace = QFileInfo(sandbox->clone(QStringLiteral("ws"))).canonicalFilePath();
        db = workspace + QStringLiteral("/raw_data/db");
    }

    void cleanup()
    {
        for (const QString& name : KOR_DB_FILE::shelved_dbs(db))
            KOR_DB_FILE::delete_shelved_db(db, name, nullptr);
        sandbox.reset();
    }

    void shelve_then_unshelve_round_trips()
    {
        make_changes();
        const QByteArray edited = GIT_SANDBOX::read(file(QStringLiteral("units.xml")));
        QVERIFY(KOR_DB_FILE::local_db_exists_with_changes(db));
        PROGRESS_REPORT_LIST progress;
        QVERIFY2(KOR_DB_FILE::shelve_db(db, QStringLiteral("army_work"), &progress, true),
                 qPrintable(progress.texts(0)));
        QCOMPARE(KOR_DB_FILE::shelved_dbs(db), QStringList{QStringLiteral("army_work")});
        QVERIFY(!KOR_DB_FILE::shelf_folder(db).startsWith(db));
        // Deleting the local changes after shelving leaves the depot's state.
        QVERIFY(!KOR_DB_FILE::local_db_exists_with_changes(db));
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("units.xml"))), units_v1);
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("spells.xml"))), spells_v1);
        QVERIFY(!QFileInfo::exists(file(QStringLiteral("heroes.xml"))));

        QVERIFY2(KOR_DB_FILE::unshelve_db(db, QStringLiteral("army_work"), &progress, true),
                 qPrintable(progress.texts(0)));
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("units.xml"))), edited);
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("heroes.xml"))), QByteArray("<heroes/>\n"));
        QVERIFY(!QFileInfo::exists(file(QStringLiteral("spells.xml"))));
        QVERIFY(KOR_DB_FILE::shelved_dbs(db).isEmpty());
        QCOMPARE(progress.count(PROGRESS_CALLBACK::SEVERITY_ERROR), 0);
    }

    void shelving_keeps_the_local_changes_unless_asked()
    {
        make_changes();
        QVERIFY(KOR_DB_FILE::shelve_db(db, QStringLiteral("copy_only"), nullptr, false));
        QVERIFY(KOR_DB_FILE::local_db_exists_with_changes(db));
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("heroes.xml"))), QByteArray("<heroes/>\n"));
    }

    void unshelve_puts_local_changes_aside()
    {
        make_changes();
        QVERIFY(KOR_DB_FILE::shelve_db(db, QStringLiteral("first"), nullptr, true));
        GIT_SANDBOX::write(file(QStringLiteral("spells.xml")), "<spells>other work</spells>\n");
        PROGRESS_REPORT_LIST progress;
        QVERIFY(KOR_DB_FILE::unshelve_db(db, QStringLiteral("first"), &progress, false));
        const QStringList shelves = KOR_DB_FILE::shelved_dbs(db);
        QCOMPARE(shelves.size(), 2);
        QVERIFY(shelves.contains(QStringLiteral("first")));
        const QString backup = shelves.at(shelves.indexOf(QStringLiteral("first")) == 0 ? 1 : 0);
        QVERIFY2(backup.startsWith(QLatin1String("before_unshelve_")), qPrintable(backup));
        // The work that made way comes back from its own shelf.
        QVERIFY(KOR_DB_FILE::unshelve_db(db, backup, nullptr, true));
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("spells.xml"))),
                 QByteArray("<spells>other work</spells>\n"));
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("units.xml"))), units_v1);
    }

    void unshelve_goes_back_to_the_shelved_revision()
    {
        GIT_SANDBOX::write(file(QStringLiteral("units.xml")), "<units>mine</units>\n");
        QVERIFY(KOR_DB_FILE::shelve_db(db, QStringLiteral("before_update"), nullptr, true));
        QVERIFY(sandbox->push_from_seed(QStringLiteral("raw_data/db/units.xml"), "<units>theirs</units>\n",
                                        QStringLiteral("Theirs")));
        QString error;
        std::unique_ptr<VCS_DEPOT> depot = VCS_DEPOT::open(error, db);
        QStringList updated;
        QVERIFY(depot->sync(error, {db + QStringLiteral("/...")}, updated));
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("units.xml"))), QByteArray("<units>theirs</units>\n"));

        QVERIFY(KOR_DB_FILE::unshelve_db(db, QStringLiteral("before_update"), nullptr, true));
        QCOMPARE(GIT_SANDBOX::read(file(QStringLiteral("units.xml"))), QByteArray("<units>mine</units>\n"));
        // Against the revision it was shelved on, the file is a local edit
        // that a merge will bring forward, not a revert of the newer one.
        int have = 0;
        QVERIFY(depot->have_change(error, file(QStringLiteral("units.xml")), have));
        QCOMPARE(have, 1);
        QStringList incoming;
        QVERIFY(depot->incoming(error, db, incoming));
        QCOMPARE(incoming, QStringList{file(QStringLiteral("units.xml"))});
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("changes");
        QTest::addColumn<bool>("single_database");
        QTest::addColumn<QString>("message");
        QTest::newRow("no changes") << "empty" << false << false << "No local changes";
        QTest::newRow("name taken") << "taken" << true << false << "exists already";
        QTest::newRow("name with a path") << "../escape" << true << false << "not a shelf name";
        QTest::newRow("blank in the name") << "two words" << true << false << "not a shelf name";
        QTest::newRow("single offline database") << "offline" << true << true << "version control";
    }

    void refusals()
    {
        QFETCH(QString, name);
        QFETCH(bool, changes);
        QFETCH(bool, single_database);
        QFETCH(QString, message);
        if (changes)
            make_changes();
        QVERIFY(KOR_DB_FILE::shelve_db(db, QStringLiteral("taken"), nullptr, false) == changes);
        KOR_DB_FILE::set_single_db_mode(single_database);
        PROGRESS_REPORT_LIST progress;
        const bool shelved = KOR_DB_FILE::shelve_db(db, name, &progress, true);
        KOR_DB_FILE::set_single_db_mode(false);
        QVERIFY(!shelved);
        QVERIFY2(progress.texts(0).contains(message), qPrintable(progress.texts(0)));
        // Nothing local went anywhere.
        QCOMPARE(KOR_DB_FILE::local_db_exists_with_changes(db), changes);
        QVERIFY(!KOR_DB_FILE::unshelve_db(db, QStringLiteral("never_made"), &progress, false));
        QVERIFY(!KOR_DB_FILE::delete_shelved_db(db, QStringLiteral("never_made"), &progress));
    }

    void outside_version_control_nothing_is_changed()
    {
        const QString plain = sandbox->path(QStringLiteral("plain/db"));
        GIT_SANDBOX::write(plain + QStringLiteral("/units.xml"), units_v1);
        QVERIFY(!KOR_DB_FILE::local_db_exists_with_changes(plain));
        PROGRESS_REPORT_LIST progress;
        QVERIFY(!KOR_DB_FILE::shelve_db(plain, QStringLiteral("nothing"), &progress, true));
        QVERIFY2(
            progress.texts(0).contains(QLatin1String("not in a workspace under version control")),
            qPrintable(progress.texts(0)));
        QCOMPARE(GIT_SANDBOX::read(plain + QStringLiteral("/units.xml")), units_v1);
    }
};

QTEST_GUILESS_MAIN(TEST_KOR_DB_FILE)
#include "test_kor_db_file.moc"
