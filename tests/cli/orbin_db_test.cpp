// orbin-db: each command on small generated databases, in-process, with the
// exit codes and the lines it prints; that no command writes; and the
// program itself.

#include "cli_output.h"
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"
#include "orbin_db_application.h"
#include "sample_layout.h"
#include "sample_project.h"
#include "test_folder.h"
#include "test_helpers.h"
#include "test_rows.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

using ORBIN_TEST::row;

namespace
{
struct RUN
{
    int code;
    QString out;
    QString err;
};

RUN run(const QStringList& arguments)
{
    QBuffer out;
    QBuffer err;
    out.open(QIODevice::WriteOnly);
    err.open(QIODevice::WriteOnly);
    ORBIN_DB_APPLICATION application;
    const int code = application.run(QStringList{"orbin-db"} + arguments, out, err, false);
    return RUN{code, QString::fromUtf8(out.data()), QString::fromUtf8(err.data())};
}

QStringList lines(const QString& text)
{
    return text.split(QChar('\n'), Qt::SkipEmptyParts);
}

// Every file below a folder with its bytes' hash and its time.
QStringList state_of(const QString& folder)
{
    QStringList state;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
    {
        const QString path = it.next();
        state.append(path + QChar(' ') +
                     QCryptographicHash::hash(ORBIN_TEST::read_file(path), QCryptographicHash::Md5).toHex() +
                     QChar(' ') + QString::number(it.fileInfo().lastModified().toMSecsSinceEpoch()));
    }
    state.sort();
    return state;
}

bool replace_first(const QString& path, const QRegularExpression& pattern, const QString& replacement)
{
    QString text = ORBIN_TEST::read_text(path);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return false;
    text.replace(match.capturedStart(), match.capturedLength(), replacement);
    return ORBIN_TEST::write_file(path, text.toUtf8());
}

QString first_capture(const QString& path, const QString& pattern)
{
    return QRegularExpression(pattern).match(ORBIN_TEST::read_text(path)).captured(1);
}
} // namespace

class ORBIN_DB_TEST : public QObject
{
    Q_OBJECT

    TEST_FOLDER m_folder;
    QString m_database;

    QString copy_of_database(const QString& name)
    {
        return ORBIN_TEST::copy_folder(m_database, m_folder.file(name)) ? m_folder.file(name) : QString();
    }

private slots:
    void initTestCase()
    {
        m_database = m_folder.file("db");
        const QString error = SAMPLE_PROJECT::generate_database(m_database);
        QVERIFY2(error.isEmpty(), qPrintable(error));
    }

    void usage_errors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("expected");
        row("no command", QStringList(), 2, "Usage: orbin-db COMMAND");
        row("unknown command", QStringList{"frobnicate"}, 2, "'frobnicate' is not a command");
        row("an argument short", QStringList{"validate"}, 2, "validate takes DB, not 0 argument(s)");
        row("unknown option", QStringList{"search", "db", "x", "--fuzzy"}, 2, "fuzzy");
        row("not a folder", QStringList{"stats", "/no/such/folder"}, 2, "is not a folder");
        row("bad number", QStringList{"stats", "db", "--top", "many"}, 2, "--top takes a whole number");
        row("help of a command", QStringList{"diff", "--help"}, 0, "Usage: orbin-db diff [options] DB1 DB2");
        row("list of commands", QStringList{"--help"}, 0, "changes WORKSPACE");
    }

    void usage_errors()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QString, expected);
        const RUN result = run(arguments);
        QCOMPARE(result.code, code);
        QVERIFY2((code == 0 ? result.out : result.err).contains(expected),
                 qPrintable(result.out + result.err));
    }

    void tab_separated_fields_stay_one_line_data()
    {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("line");
        QTest::newRow("plain") << QStringList{"a", "b c"} << "a\tb c";
        QTest::newRow("tab and line breaks") << QStringList{"a\tb", "c\r\nd"} << "a\\tb\tc\\r\\nd";
        QTest::newRow("backslashes stay readable") << QStringList{"a\\tb", ""} << "a\\\\tb\t";
    }

    void tab_separated_fields_stay_one_line()
    {
        QFETCH(QStringList, fields);
        QFETCH(QString, line);
        QCOMPARE(CLI_OUTPUT::row(fields), line);
    }

    void validate_finds_nothing_in_a_sample()
    {
        const RUN result = run({"validate", m_database});
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, QString());
        QVERIFY2(result.err.contains("no findings"), qPrintable(result.err));
    }

    void validate_reports_each_problem_in_order()
    {
        const QString copy = copy_of_database("damaged");
        QVERIFY(!copy.isEmpty());
        // A table of every kind of bad value, and a relationship to nowhere.
        QVERIFY(ORBIN_TEST::write_file(
            copy + "/Veld_schemas/checks.xml",
            "<table_schema name=\"checks\">"
            "<field name=\"key\" type=\"text\" primary_key=\"true\" required=\"true\"/>"
            "<field name=\"kind\" "
            "type=\"text\"><fixed_value>cavalry</fixed_value><fixed_value>infantry</fixed_value>"
            "</field>"
            "<field name=\"name\" type=\"text\" max_length=\"4\"/>"
            "<field name=\"faction\" type=\"text\" foreign_table=\"factions\" foreign_field=\"key\"/>"
            "<field name=\"note\" type=\"text\" required=\"true\"/>"
            "<field name=\"lost\" type=\"text\" foreign_table=\"elsewhere\"/>"
            "</table_schema>"));
        QVERIFY(ORBIN_TEST::write_file(
            copy + "/checks.xml",
            "<table name=\"checks\">"
            "<record uuid=\"00000000-0000-0000-0000-000000000001\"><key>good</key>"
            "<kind>cavalry</kind><name>ok</name><note>x</note></record>"
            "<record uuid=\"00000000-0000-0000-0000-000000000002\"><key>bad</key>"
            "<kind>navy</kind><name>toolong</name><faction>nowhere</faction><note/></record>"
            "</table>"));
        // A table the engine cannot read, and a foreign key to no record.
        const QString languages = copy + "/languages.xml";
        QVERIFY(ORBIN_TEST::write_file(languages, ORBIN_TEST::read_file(languages).left(200)));
        const QString links = copy + "/units_to_factions.xml";
        const QString unit = first_capture(links, "<unit>([^<]*)</unit>");
        QVERIFY(replace_first(links, QRegularExpression("<faction>[^<]*</faction>"),
                              "<faction>nowhere</faction>"));

        const RUN result = run({"validate", copy});
        QCOMPARE(result.code, 1);
        const QStringList found = lines(result.out);
        QCOMPARE(found.size(), 7);
        QCOMPARE(found.mid(0, 5),
                 (QStringList{"checks.lost: refers to the unknown table 'elsewhere'",
                              "checks[bad].kind: 'navy' is not one of its fixed values (cavalry, infantry)",
                              "checks[bad].name: is 7 characters long; at most 4 are allowed",
                              "checks[bad].faction: 'nowhere' names no record of table 'factions'",
                              "checks[bad].note: is required but empty"}));
        QVERIFY2(found.at(5).startsWith("languages: " + languages + ", line "), qPrintable(found.at(5)));
        QCOMPARE(found.at(6),
                 QStringLiteral("units_to_factions[%1nowhere].faction: 'nowhere' names no record of table "
                                "'factions'")
                     .arg(unit));
        QVERIFY(result.err.contains("7 finding(s)"));
    }

    void search_prints_hits()
    {
        RUN result = run({"search", m_database, "VESH_EMPIRE", "--exact", "--header"});
        QCOMPARE(result.code, 0);
        QStringList found = lines(result.out);
        QCOMPARE(found.takeFirst(), "Table Name\tField Name\tKey\tValue");
        QVERIFY(found.size() > 3);
        QString previous;
        for (const QString& line : found)
        {
            const QStringList fields = line.split(QChar('\t'));
            QCOMPARE(fields.size(), 4);
            QCOMPARE(fields.at(3), "vesh_empire");
            QVERIFY(previous <= fields.at(0));
            previous = fields.at(0);
        }
        // The case matters only when asked to.
        result = run({"search", m_database, "VESH_EMPIRE", "-x", "-c"});
        QCOMPARE(result.code, 1);
        QCOMPARE(result.out, QString());
        result = run({"search", m_database, "vesh*emp"});
        QCOMPARE(result.code, 0);
        QVERIFY(lines(result.out).size() >= found.size());
    }

    void query_prints_a_header_and_rows()
    {
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        QCOMPARE(engine.connect_for_diff(m_database), QString());
        QString error;
        const KOR_TABLE_DATA* factions = engine.get_table_data(error, "factions");
        QVERIFY(factions);

        RUN result = run({"query", m_database, "SELECT key, culture FROM [factions]"});
        QCOMPARE(result.code, 0);
        QStringList rows = lines(result.out);
        QCOMPARE(rows.takeFirst(), "factions.key\tfactions.culture");
        QCOMPARE(rows.size(), factions->record_count());
        QCOMPARE(rows.first().section(QChar('\t'), 0, 0), factions->records().key_at(0));

        result = run({"query", m_database, "SELECT key FROM [factions] WHERE key = 'none'", "--no-header"});
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, QString());
        result = run({"query", m_database, "SELECT FROM"});
        QCOMPARE(result.code, 2);
        QCOMPARE(result.out, QString());
        QVERIFY(result.err.startsWith("orbin-db: "));
    }

    void diff_lists_tables_records_and_fields()
    {
        const QString copy = copy_of_database("changed");
        QVERIFY(!copy.isEmpty());
        RUN result = run({"diff", m_database, copy});
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, QString());

        const QString units = copy + "/main_units.xml";
        const QString unit = first_capture(units, "<unit>([^<]*)</unit>");
        QVERIFY(replace_first(units, QRegularExpression("<cost>[0-9]+</cost>"), "<cost>99999</cost>"));
        QVERIFY(QFile::remove(copy + "/steppe_horde_types.xml"));
        QVERIFY(ORBIN_TEST::write_file(copy + "/extra_table.xml", "<table name=\"extra_table\"/>"));
        result = run({"diff", m_database, copy});
        QCOMPARE(result.code, 1);
        QCOMPARE(lines(result.out),
                 (QStringList{"only in 2: extra_table", "differs: main_units",
                              QString("    differs: %1: cost").arg(unit), "only in 1: steppe_horde_types"}));
        result = run({"diff", copy, m_database, "--tables-only"});
        QCOMPARE(lines(result.out), (QStringList{"only in 1: extra_table", "differs: main_units",
                                                 "only in 2: steppe_horde_types"}));
        result = run({"diff", m_database, m_folder.path()});
        QCOMPARE(result.code, 2);
        QVERIFY(result.err.contains("Invalid path specified for db 2"));
    }

    void changes_lists_local_edits_of_a_workspace()
    {
        TEST_FOLDER folder;
        SAMPLE_LAYOUT layout;
        const QString error = SAMPLE_PROJECT::generate_small(folder.file("project"), &layout);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        RUN result = run({"changes", layout.workspace});
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, QString());

        const QString units = layout.database + "/main_units.xml";
        const QString unit = first_capture(units, "<unit>([^<]*)</unit>");
        QVERIFY(replace_first(units, QRegularExpression("<cost>[0-9]+</cost>"), "<cost>99999</cost>"));
        result = run({"changes", layout.workspace});
        QCOMPARE(result.code, 1);
        QCOMPARE(lines(result.out),
                 (QStringList{"changed: main_units", QString("    changed: %1: cost").arg(unit)}));

        // A database outside version control has no local changes to list.
        result = run({"changes", m_database});
        QCOMPARE(result.code, 2);
        QVERIFY(!result.err.isEmpty());
    }

    void stats_counts_what_the_engine_reads()
    {
        KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
        QCOMPARE(engine.connect_for_diff(m_database), QString());
        QMap<QString, bool> names;
        engine.get_table_names(names);
        qint64 records = 0;
        for (const QString& name : names.keys())
        {
            QString error;
            records += engine.get_table_data(error, name)->record_count();
        }
        const RUN result = run({"stats", m_database, "--top", "2"});
        QCOMPARE(result.code, 0);
        const QStringList found = lines(result.out);
        QVERIFY(found.contains(QString("tables        %1").arg(names.size())));
        QVERIFY(found.contains(QString("records       %1").arg(records)));
        QCOMPARE(found.size(), 8); // five counts, the heading and two tables
        QVERIFY(found.at(6).startsWith("  translated_texts "));
    }

    void commands_never_write()
    {
        const QString copy = copy_of_database("untouched");
        QVERIFY(!copy.isEmpty());
        const QStringList before = state_of(copy);
        run({"validate", copy});
        run({"search", copy, "a"});
        run({"query", copy, "SELECT key FROM [factions]"});
        run({"diff", copy, m_database});
        run({"stats", copy});
        QCOMPARE(state_of(copy), before);

        // An interrupted commit is left for the editor to complete: reading
        // commands refuse the folder rather than repair it.
        QVERIFY(ORBIN_TEST::write_file(copy + "/.veld_journal", "VELD-JOURNAL 1\nEND\n"));
        QVERIFY(ORBIN_TEST::write_file(copy + "/factions.xml.veld-new", "new"));
        const QStringList pending = state_of(copy);
        RUN result = run({"search", copy, "a"});
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains("interrupted"), qPrintable(result.err));
        result = run({"validate", copy});
        QCOMPARE(result.code, 1);
        QVERIFY(result.out.startsWith("a change was interrupted"));
        QCOMPARE(state_of(copy), pending);
    }

    void the_program_answers_by_exit_code()
    {
        const QString program = ORBIN_TEST::binary_dir() + "/bin/orbin-db";
        if (!QFileInfo::exists(program))
            QSKIP("orbin-db was not built next to the tests");
        QProcess process;
        process.start(program, QStringList());
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 2);
        QVERIFY(process.readAllStandardError().contains("Usage: orbin-db COMMAND"));

        process.start(program, {"validate", "--progress", m_database});
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 0);
        const QByteArray err = process.readAllStandardError();
        QVERIFY2(err.contains("orbin-db: validating table 1 of "), err.constData());
        QVERIFY(process.readAllStandardOutput().isEmpty());
    }
};

QTEST_GUILESS_MAIN(ORBIN_DB_TEST)
#include "orbin_db_test.moc"
