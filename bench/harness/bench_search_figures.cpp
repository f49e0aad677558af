// Figures of the global search and of the comparison of two copies.

#include "bench_figures.h"
#include "bench_measure.h"
#include "bench_report.h"

#include "diff_table_scan.h"
#include "global_search.h"
#include "global_search_index.h"
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"

#include <QDir>
#include <QElapsedTimer>

namespace
{
QStringList table_files(const QString& folder)
{
    QStringList files;
    for (const QString& name : QDir(folder).entryList(QStringList(QStringLiteral("*.xml")), QDir::Files))
        if (DIFF_TABLE_SCAN::is_table_file_name(name))
            files.append(folder + QLatin1Char('/') + name);
    return files;
}
} // namespace

namespace BENCH_FIGURES
{
void search(const CONTEXT& context)
{
    BENCH_REPORT& report = *context.report;
    KOR_XML_QUERY_INTERFACE engine(nullptr, QString(), false, false);
    const QString error = engine.connect_without_merge(context.database, false);
    if (!error.isEmpty())
    {
        report.note(QStringLiteral("search: cannot connect: ") + error);
        return;
    }
    const QString text = QStringLiteral("vesh_empire");
    QMap<QString, bool> names;
    engine.get_table_names(names);
    QElapsedTimer timer;
    timer.start();
    for (const QString& name : names.keys())
    {
        QString ignored;
        engine.get_table_data(ignored, name);
    }
    report.note(QStringLiteral("loading every table: %1 ms").arg(timer.elapsed()));

    // The first search lays out every table's texts for the searches after it.
    QVector<GLOBAL_SEARCH_HIT> hits;
    timer.restart();
    GLOBAL_SEARCH(text, Qt::CaseSensitive, false).search(engine, hits);
    report.note(QStringLiteral("first search, making the search indexes: %1 ms, %2 hits")
                    .arg(timer.elapsed())
                    .arg(hits.size()));
    double all_bytes = 0;
    double big_bytes = 0;
    for (const QString& name : names.keys())
    {
        QString ignored;
        if (const KOR_TABLE_DATA* table = engine.get_table_data(ignored, name))
        {
            const double bytes = double(GLOBAL_SEARCH_INDEX::of(*table)->memory_bytes());
            all_bytes += bytes;
            if (name == context.big_table)
                big_bytes = bytes;
        }
    }
    report.note(QStringLiteral("search indexes: %1 MB in all, %2 MB of them for %3")
                    .arg(all_bytes / 1e6, 0, 'f', 1)
                    .arg(big_bytes / 1e6, 0, 'f', 1)
                    .arg(context.big_table));

    struct CASE
    {
        const char* name;
        Qt::CaseSensitivity sensitivity;
        bool exact;
        QString text;
        const char* grep_options;
    };
    const CASE cases[] = {
        {"search \"%1\" once loaded", Qt::CaseSensitive, false, text, "-rFc"},
        {"search \"%1\", ignoring case", Qt::CaseInsensitive, false, text, "-rFic"},
        {"search \"%1\", exact match", Qt::CaseSensitive, true, text, "-rFxc"},
    };
    for (const CASE& item : cases)
    {
        const GLOBAL_SEARCH search(item.text, item.sensitivity, item.exact);
        BENCH_FIGURE figure;
        figure.name = QString::fromLatin1(item.name).arg(item.text);
        figure.ours = BENCH_MEASURE::best_of(context.repeats, [&] {
            hits.clear();
            search.search(engine, hits);
        });
        figure.baseline_name = QStringLiteral("grep %1").arg(QLatin1String(item.grep_options));
        figure.baseline =
            BENCH_MEASURE::best_of_command(context.repeats, QStringLiteral("grep"),
                                           {QLatin1String(item.grep_options), item.text, context.database});
        figure.target_ratio = 1;
        figure.note = QStringLiteral("%1 hits").arg(hits.size());
        report.add(figure);
    }
}

void comparison(const CONTEXT& context)
{
    BENCH_REPORT& report = *context.report;
    const QStringList files = table_files(context.database) + table_files(context.copy);
    // Both sides read from the page cache.
    BENCH_MEASURE::best_of_command(1, QStringLiteral("md5sum"), files);

    DIFF_TABLE_SCAN scan;
    QString error;
    BENCH_FIGURE figure;
    figure.name = QStringLiteral("table-level comparison of two copies");
    figure.ours = BENCH_MEASURE::best_of(context.repeats,
                                         [&] { scan.scan(error, context.database, context.copy, true); });
    if (!error.isEmpty())
    {
        report.note(QStringLiteral("comparison: ") + error);
        return;
    }
    figure.baseline_name = QStringLiteral("md5sum of both trees");
    figure.baseline = BENCH_MEASURE::best_of_command(context.repeats, QStringLiteral("md5sum"), files);
    figure.target_ratio = 1.2;
    figure.note = QStringLiteral("%1 tables: %2 differ, %3 only in 1, %4 only in 2")
                      .arg(scan.tables().size())
                      .arg(scan.tables_differing().size())
                      .arg(scan.tables_only_in_db1().size())
                      .arg(scan.tables_only_in_db2().size());
    report.add(figure);

    BENCH_FIGURE small;
    small.name = QStringLiteral("  the same, large tables left out");
    small.ours = BENCH_MEASURE::best_of(context.repeats,
                                        [&] { scan.scan(error, context.database, context.copy, false); });
    small.note = QStringLiteral("%1 large").arg(scan.large_tables().size());
    report.add(small);
}
} // namespace BENCH_FIGURES
