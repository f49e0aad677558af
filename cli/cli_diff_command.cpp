#include "cli_diff_command.h"

#include "cli_database.h"
#include "cli_output.h"
#include "diff_table_scan.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"
#include "veld_table_diff_data.h"

#include <QCommandLineParser>

#include <algorithm>
#include <memory>

namespace
{
const char* const TABLES_ONLY = "tables-only";
const char* const SKIP_LARGE = "skip-large";

struct RECORD_LINE
{
    QString key;
    QString text;
};

QString key_of(const KOR_TABLE_DATA* table, const QUuid& uuid)
{
    const KOR_RECORD_DATA* record = table ? table->record_by_uuid(uuid) : nullptr;
    return record ? record->key() : uuid.toString(QUuid::WithoutBraces);
}
} // namespace

QString CLI_DIFF_COMMAND::summary() const
{
    return QStringLiteral("Compare two databases: tables, and the records and fields that differ.");
}

QString CLI_DIFF_COMMAND::description() const
{
    return QStringLiteral(
        "Compares the databases in the folders DB1 and DB2. Every table file of both is hashed (no\n"
        "table is parsed for this), and each table that is in both but differs is then compared\n"
        "record by record: records are the same record when they have the same uuid, and two\n"
        "records differ in the fields whose values differ as text.\n"
        "\n"
        "Prints, in table name order:\n"
        "  only in 1: TABLE           only in 2: TABLE           differs: TABLE\n"
        "and under each differing table, in key order:\n"
        "      only in 1: KEY         only in 2: KEY             differs: KEY: FIELD, FIELD...\n"
        "\n"
        "Exit codes: 0 no differences, 1 differences, 2 usage error, a folder that is no database,\n"
        "or a table whose records could not be read.");
}

void CLI_DIFF_COMMAND::add_options(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("DB1"), QStringLiteral("The first database folder."));
    parser.addPositionalArgument(QStringLiteral("DB2"), QStringLiteral("The second database folder."));
    parser.addOption(
        QCommandLineOption(QLatin1String(TABLES_ONLY),
                           QStringLiteral("Name the differing tables; do not compare their records.")));
    parser.addOption(QCommandLineOption(
        QLatin1String(SKIP_LARGE),
        QStringLiteral("Leave out tables whose file in DB1 is larger than 15,000,000 bytes, as the editor's "
                       "diff does by default.")));
}

int CLI_DIFF_COMMAND::run(const QCommandLineParser& parser, CLI_OUTPUT& output) const
{
    const QString db1 = parser.positionalArguments().at(0);
    const QString db2 = parser.positionalArguments().at(1);
    DIFF_TABLE_SCAN scan;
    QString error;
    const bool scanned =
        scan.scan(error, db1, db2, !parser.isSet(QLatin1String(SKIP_LARGE)), [&output](int done, int count) {
            output.progress(QStringLiteral("hashing table file %1 of %2").arg(done).arg(count));
        });
    output.end_progress();
    if (!scanned)
        return output.fail(error);

    const bool records = !parser.isSet(QLatin1String(TABLES_ONLY));
    std::unique_ptr<CLI_DATABASE> database1;
    std::unique_ptr<CLI_DATABASE> database2;
    int failures = 0;
    bool differences = false;
    QTextStream& out = output.out();
    const QStringList names = scan.tables().keys();
    for (int i = 0; i < names.size(); ++i)
    {
        const QString& name = names.at(i);
        if (scan.tables_only_in_db1().contains(name))
        {
            out << "only in 1: " << name << '\n';
            differences = true;
            continue;
        }
        if (scan.tables_only_in_db2().contains(name))
        {
            out << "only in 2: " << name << '\n';
            differences = true;
            continue;
        }
        if (!scan.tables_differing().contains(name))
            continue;
        differences = true;
        out << "differs: " << name << '\n';
        if (!records)
            continue;
        if (!database1)
        {
            database1 = std::make_unique<CLI_DATABASE>();
            database2 = std::make_unique<CLI_DATABASE>();
            if (!database1->open(error, db1) || !database2->open(error, db2))
                return output.fail(error);
        }
        output.progress(QStringLiteral("comparing the records of %1").arg(name));
        const KOR_TABLE_DATA* table1 = database1->engine().get_table_data(error, name);
        const KOR_TABLE_DATA* table2 = table1 ? database2->engine().get_table_data(error, name) : nullptr;
        if (!table1 || !table2)
        {
            output.note(QStringLiteral("%1: the records cannot be compared: %2").arg(name, error));
            ++failures;
            continue;
        }
        VELD_TABLE_DIFF_DATA diff(table1, table2, name);
        diff.process_table_diff();
        std::vector<RECORD_LINE> lines;
        for (const QUuid& uuid : diff.records_only_in_db1())
            lines.push_back({key_of(table1, uuid), QStringLiteral("only in 1: ") + key_of(table1, uuid)});
        for (const QUuid& uuid : diff.records_only_in_db2())
            lines.push_back({key_of(table2, uuid), QStringLiteral("only in 2: ") + key_of(table2, uuid)});
        for (const QUuid& uuid : diff.records_differing())
            lines.push_back(
                {key_of(table1, uuid),
                 QStringLiteral("differs: %1: %2")
                     .arg(key_of(table1, uuid), diff.differing_fields(uuid).join(QStringLiteral(", ")))});
        std::sort(lines.begin(), lines.end(), [](const RECORD_LINE& a, const RECORD_LINE& b) {
            return a.key != b.key ? a.key < b.key : a.text < b.text;
        });
        output.end_progress();
        for (const RECORD_LINE& line : lines)
            out << "    " << line.text << '\n';
        if (lines.empty())
            out << "    no record differs: the files differ only in their form\n";
        // One table's records at a time.
        database1->engine().clear_table_data(name);
        database2->engine().clear_table_data(name);
    }
    QStringList large(scan.large_tables().begin(), scan.large_tables().end());
    large.sort();
    for (const QString& name : qAsConst(large))
        output.note(QStringLiteral("left out, its file in DB1 is larger than %1 bytes: %2")
                        .arg(DIFF_TABLE_SCAN::LARGE_TABLE_BYTES)
                        .arg(name));
    if (failures > 0)
        return CLI_OUTPUT::FAILURE;
    return differences ? CLI_OUTPUT::FINDINGS : CLI_OUTPUT::SUCCESS;
}
