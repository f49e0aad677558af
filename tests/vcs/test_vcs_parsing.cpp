// What the depot layer reads and writes as text: tagged client output,
// file arguments, command options and the describe shape.

#include "test_rows.h"
#include "vcs_depot.h"
#include "vcs_file_argument.h"
#include "vcs_git_verbs.h"
#include "vcs_ztag_record.h"

#include <QtTest/QtTest>

using ORBIN_TEST::row;

class TEST_VCS_PARSING : public QObject
{
    Q_OBJECT

private slots:
    void tagged_output_splits_into_records_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<int>("records");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value_in_first");
        QTest::addColumn<QStringList>("untagged");
        row("blank lines between records",
            QStringList{"... depotFile //a", "... rev 1", "", "... depotFile //b", "... rev 2", ""}, 2, "rev",
            "1", QStringList());
        row("a repeated field starts a record",
            QStringList{"... depotFile //a", "... rev 1", "... depotFile //b", "... rev 2"}, 2, "depotFile",
            "//a", QStringList());
        row("description over lines and its closing blank line",
            QStringList{"... change 7", "... desc First line", "second line", "", "third line", "",
                        "... status submitted", "... depotFile0 //x"},
            1, "desc", "First line\nsecond line\n\nthird line", QStringList());
        row("a field without value", QStringList{"... isMapped", "... headRev 3"}, 1, "isMapped", "",
            QStringList());
        row("messages before any field", QStringList{"Change 12 created.", "... change 12"}, 1, "change",
            "12", QStringList{"Change 12 created."});
    }

    void tagged_output_splits_into_records()
    {
        QFETCH(QStringList, lines);
        QFETCH(int, records);
        QFETCH(QString, key);
        QFETCH(QString, value_in_first);
        QFETCH(QStringList, untagged);
        QStringList left;
        const QVector<VCS_ZTAG_RECORD> parsed = VCS_ZTAG_RECORD::parse(lines, &left);
        QCOMPARE(parsed.size(), records);
        QCOMPARE(left, untagged);
        if (records > 0)
        {
            QVERIFY(parsed.first().contains(key));
            QCOMPARE(parsed.first().value(key), value_in_first);
        }
    }

    void records_written_read_back_the_same()
    {
        VCS_ZTAG_RECORD first;
        first.set("change", 12);
        first.set("desc", "Two\nlines\n");
        first.set("status", "submitted");
        VCS_ZTAG_RECORD second;
        second.set("change", 11);
        second.set("desc", "One\n");
        const QStringList lines = VCS_ZTAG_RECORD::to_lines({first, second});
        QCOMPARE(lines.first(), "... change 12");
        const QVector<VCS_ZTAG_RECORD> parsed = VCS_ZTAG_RECORD::parse(lines);
        QCOMPARE(parsed.size(), 2);
        QCOMPARE(parsed.at(0).value("desc"), "Two\nlines");
        QCOMPARE(parsed.at(0).value("status"), "submitted");
        QCOMPARE(parsed.at(1).int_value("change"), 11);
        QCOMPARE(parsed.at(1).int_value("missing", -1), -1);
    }

    void file_arguments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("matching");
        QTest::addColumn<QString>("not_matching");
        const int none = VCS_FILE_ARGUMENT::REVISION_NONE_GIVEN, have = VCS_FILE_ARGUMENT::REVISION_HAVE,
                  revision = VCS_FILE_ARGUMENT::REVISION_FILE, deleted = VCS_FILE_ARGUMENT::REVISION_DELETED,
                  change = VCS_FILE_ARGUMENT::REVISION_CHANGE;
        row("absolute file", "/ws/db/units.xml", "db/units.xml", none, 0, "db", "db/units.xml",
            "db/units.xml.bak");
        row("windows separators", "/ws\\db\\units.xml", "db/units.xml", none, 0, "db", "db/units.xml", "");
        row("relative", "db/units.xml", "db/units.xml", none, 0, "db", "db/units.xml", "");
        row("depot syntax", "//db/...", "db/...", none, 0, "db", "db/sub/a.xml", "dbx/a.xml");
        row("one level", "/ws/db/*.xml", "db/*.xml", none, 0, "db", "db/a.xml", "db/sub/a.xml");
        row("whole workspace", "//...", "...", none, 0, "", "any/where.txt", "");
        row("the root folder", "/ws", "...", none, 0, "", "a.txt", "");
        row("have", "/ws/db/a.xml#have", "db/a.xml", have, 0, "db", "db/a.xml", "");
        row("revision", "/ws/db/a.xml#3", "db/a.xml", revision, 3, "db", "db/a.xml", "");
        row("revision none", "/ws/db/a.xml#0", "db/a.xml", deleted, 0, "db", "", "");
        row("changelist", "/ws/db/...@120", "db/...", change, 120, "db", "", "");
        row("at sign in a folder name", "/ws/a@b/c.xml", "a@b/c.xml", none, 0, "a@b", "a@b/c.xml", "");
    }

    void file_arguments()
    {
        QFETCH(QString, text);
        QFETCH(QString, pattern);
        QFETCH(int, kind);
        QFETCH(int, number);
        QFETCH(QString, folder);
        QFETCH(QString, matching);
        QFETCH(QString, not_matching);
        VCS_FILE_ARGUMENT file_arg;
        QString error;
        QVERIFY2(file_arg.parse(error, text, "/ws", "/ws"), qPrintable(error));
        QCOMPARE(file_arg.relative_pattern(), pattern);
        QCOMPARE(int(file_arg.revision_kind()), kind);
        QCOMPARE(file_arg.revision_number(), number);
        QCOMPARE(file_arg.has_wildcards() ? file_arg.fixed_directory()
                                          : file_arg.relative_pattern().section(QLatin1Char('/'), 0, -2),
                 folder);
        if (!matching.isEmpty())
            QVERIFY(file_arg.matches(matching));
        if (!not_matching.isEmpty())
            QVERIFY(!file_arg.matches(not_matching));
    }

    void bad_file_arguments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        row("outside the workspace", "/elsewhere/a.xml", "not in client view");
        row("climbing out", "//../a.xml", "not in client view");
        row("label", "/ws/a.xml@release", "only changelist numbers");
        row("unknown revision word", "/ws/a.xml#latest", "unknown revision");
        row("empty", "", "empty");
    }

    void bad_file_arguments()
    {
        QFETCH(QString, text);
        QFETCH(QString, message);
        VCS_FILE_ARGUMENT file_arg;
        QString error;
        QVERIFY(!file_arg.parse(error, text, "/ws", "/ws"));
        QVERIFY2(error.contains(message), qPrintable(error));
    }

    void command_options_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("flags");
        QTest::addColumn<QString>("change");
        QTest::addColumn<QStringList>("files");
        row("flags then files", QStringList{"-n", "-k", "a", "b"}, QStringList{"-k", "-n"}, "",
            QStringList{"a", "b"});
        row("value apart", QStringList{"-c", "12", "a"}, QStringList(), "12", QStringList{"a"});
        row("value joined", QStringList{"-c12", "a"}, QStringList(), "12", QStringList{"a"});
        row("resolve flags are words", QStringList{"-at", "a"}, QStringList{"-at"}, "", QStringList{"a"});
        row("after a file nothing is an option", QStringList{"a", "-n"}, QStringList(), "",
            QStringList{"a", "-n"});
        row("double dash", QStringList{"--", "-odd-name"}, QStringList(), "", QStringList{"-odd-name"});
    }

    void command_options()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, flags);
        QFETCH(QString, change);
        QFETCH(QStringList, files);
        const VCS_GIT_VERBS::ARGUMENTS parsed = VCS_GIT_VERBS::parse(arguments, {"-c"});
        QVERIFY(parsed.error.isEmpty());
        QStringList seen = parsed.flags.values();
        seen.sort();
        QCOMPARE(seen, flags);
        QCOMPARE(parsed.values.value("-c"), change);
        QCOMPARE(parsed.files, files);
        QVERIFY(!VCS_GIT_VERBS::parse({"-c"}, {"-c"}).error.isEmpty());
    }

    void describe_shape()
    {
        VCS_CHANGE_INFO change;
        change.number = 42;
        change.user = "dana";
        change.workspace = "dana_ws";
        change.status = "submitted";
        change.time = QDateTime(QDate(2024, 3, 5), QTime(9, 8, 7));
        change.description = "Fix the army panel\nand its icons";
        change.files.append(VCS_CHANGE_FILE{"//raw_data/UI/army.slpui", QString(), 4, "edit"});
        change.files.append(VCS_CHANGE_FILE{"//raw_data/UI/new.slpui", QString(), 1, "add"});
        const QStringList expected{"Change 42 by dana@dana_ws on 2024/03/05 09:08:07",
                                   QString(),
                                   "\tFix the army panel",
                                   "\tand its icons",
                                   QString(),
                                   "Affected files ...",
                                   QString(),
                                   "//raw_data/UI/army.slpui#4 edit",
                                   "//raw_data/UI/new.slpui#1 add",
                                   QString()};
        QCOMPARE(VCS_DEPOT::describe_lines(change), expected);
        change.status = "pending";
        QVERIFY(VCS_DEPOT::describe_lines(change).first().contains(QLatin1String("dana_ws *pending* on")));
    }
};

QTEST_GUILESS_MAIN(TEST_VCS_PARSING)
#include "test_vcs_parsing.moc"
