#include "cli_changes_command.h"

#include "cli_database.h"
#include "cli_output.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_xml_query_interface.h"
#include "vcs_depot.h"

#include <QCommandLineParser>
#include <QDir>

#include <algorithm>
#include <vector>

namespace
{
struct RECORD_LINE
{
    QString key;
    QString text;
};
} // namespace

QString CLI_CHANGES_COMMAND::summary() const
{
    return QStringLiteral("List the local changes of a workspace's database against the depot.");
}

QString CLI_CHANGES_COMMAND::description() const
{
    return QStringLiteral(
        "Lists what changed in the database of WORKSPACE since it was last brought from the depot:\n"
        "WORKSPACE is the database folder, or a folder (a workspace) with one database below it.\n"
        "\n"
        "Prints, in table name order:\n"
        "  added: TABLE      deleted: TABLE      changed: TABLE      schema changed: TABLE\n"
        "and under each changed table, in key order (a deleted record by its uuid):\n"
        "      added: KEY     deleted: UUID      changed: KEY: FIELD, FIELD...\n"
        "\n"
        "Exit codes: 0 no local changes, 1 local changes, 2 usage error, no database, or no workspace\n"
        "under version control.");
}

void CLI_CHANGES_COMMAND::add_options(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("WORKSPACE"),
                                 QStringLiteral("The database folder, or a workspace holding one database."));
}

int CLI_CHANGES_COMMAND::run(const QCommandLineParser& parser, CLI_OUTPUT& output) const
{
    QString error;
    const QString path = CLI_DATABASE::find_database(error, parser.positionalArguments().at(0));
    if (path.isEmpty())
        return output.fail(error);
    if (!VCS_DEPOT::open(error, path))
        return output.fail(QStringLiteral("%1: %2").arg(path, error));
    CLI_DATABASE database;
    if (!database.open(error, path))
        return output.fail(error);
    KOR_XML_QUERY_INTERFACE& engine = database.engine();
    output.progress(QStringLiteral("asking the depot for local changes"));
    const int reports_before = database.reports().reports.size();
    QSet<QString> changed;
    QSet<QString> schemas;
    QSet<QString> deleted;
    QSet<QString> added_files;
    engine.get_changed_tables(changed, path);
    engine.get_changed_schemas(schemas, path);
    engine.get_deleted_tables(deleted, path);
    engine.get_added_files(added_files, path);
    output.end_progress();
    // The engine says why a list could not be made instead of failing.
    const auto reports = database.reports().reports.mid(reports_before);
    if (!reports.isEmpty())
    {
        QStringList texts;
        for (const auto& report : reports)
            texts.append(report.first);
        return output.fail(texts.join(QStringLiteral("; ")));
    }

    QStringList names = QStringList(changed.begin(), changed.end()) +
                        QStringList(schemas.begin(), schemas.end()) +
                        QStringList(deleted.begin(), deleted.end());
    names.sort();
    names.removeDuplicates();
    QTextStream& out = output.out();
    const QString folder = QDir::cleanPath(path) + QLatin1Char('/');
    for (const QString& name : qAsConst(names))
    {
        if (deleted.contains(name))
        {
            out << "deleted: " << name << '\n';
            continue;
        }
        if (added_files.contains(folder + KOR_TABLE_IO::table_file_relative(name)) ||
            added_files.contains(folder + KOR_TABLE_IO::schema_file_relative(name)))
        {
            out << "added: " << name << '\n';
            continue;
        }
        if (schemas.contains(name))
            out << "schema changed: " << name << '\n';
        if (!changed.contains(name))
            continue;
        out << "changed: " << name << '\n';
        output.progress(QStringLiteral("comparing the records of %1").arg(name));
        const KOR_CHANGED_FIELDS fields = engine.changed_fields(name);
        const KOR_TABLE_DATA* table = engine.get_table_data(error, name);
        std::vector<RECORD_LINE> lines;
        for (auto it = fields.constBegin(); it != fields.constEnd(); ++it)
        {
            const KOR_RECORD_DATA* record = table ? table->record_by_uuid(it.key()) : nullptr;
            const QString key = record ? record->key() : it.key().toString(QUuid::WithoutBraces);
            QStringList changed_fields;
            QString kind;
            for (const QPair<QString, int>& change : it.value())
            {
                if (change.second == 0)
                    kind = QStringLiteral("added");
                else if (change.second == 1)
                    kind = QStringLiteral("deleted");
                else
                    changed_fields.append(change.first);
            }
            if (kind.isEmpty())
                lines.push_back(
                    {key,
                     QStringLiteral("changed: %1: %2").arg(key, changed_fields.join(QStringLiteral(", ")))});
            else
                lines.push_back({key, kind + QStringLiteral(": ") + key});
        }
        std::sort(lines.begin(), lines.end(), [](const RECORD_LINE& a, const RECORD_LINE& b) {
            return a.key != b.key ? a.key < b.key : a.text < b.text;
        });
        output.end_progress();
        for (const RECORD_LINE& line : lines)
            out << "    " << line.text << '\n';
        engine.clear_table_data(name);
    }
    return names.isEmpty() ? CLI_OUTPUT::SUCCESS : CLI_OUTPUT::FINDINGS;
}
