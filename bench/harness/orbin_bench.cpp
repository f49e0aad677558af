// orbin_bench: every figure of docs/performance.md in one run, each beside
// the baseline that bounds it from below. See docs/performance.md.

#include "bench_database.h"
#include "bench_figures.h"
#include "bench_measure.h"
#include "bench_report.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orbin_bench"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Measures the engine, the table editor's model, the global search and the comparison of two "
        "databases on the sample generator's scale database, each against a baseline."));
    parser.addHelpOption();
    const QCommandLineOption data(QStringLiteral("data"),
                                  QStringLiteral("Folder for the databases; made when missing, reused when "
                                                 "present (default: a temporary folder)."),
                                  QStringLiteral("folder"));
    const QCommandLineOption repeats(QStringLiteral("repeats"),
                                     QStringLiteral("Runs of each figure; the best counts (3)."),
                                     QStringLiteral("n"), QStringLiteral("3"));
    const QCommandLineOption only(
        QStringLiteral("only"),
        QStringLiteral("Comma-separated figures: load, connect, apply, model, search, "
                       "comparison (all)."),
        QStringLiteral("figures"));
    const QCommandLineOption tables(QStringLiteral("scale-tables"),
                                    QStringLiteral("Tables the generator adds (800)."), QStringLiteral("n"),
                                    QStringLiteral("800"));
    const QCommandLineOption rows(QStringLiteral("scale-rows"),
                                  QStringLiteral("Records of the big table (1000000)."), QStringLiteral("n"),
                                  QStringLiteral("1000000"));
    const QCommandLineOption markdown(QStringLiteral("markdown"),
                                      QStringLiteral("Print the figures again as a Markdown table."));
    parser.addOptions({data, repeats, only, tables, rows, markdown});
    parser.process(application);

    std::unique_ptr<QTemporaryDir> temporary;
    QString folder = parser.value(data);
    if (folder.isEmpty())
    {
        temporary = std::make_unique<QTemporaryDir>();
        folder = temporary->path();
    }
    BENCH_DATABASE database;
    QString error;
    if (!database.prepare(error, folder, parser.value(tables).toInt(), parser.value(rows).toInt()))
    {
        std::fprintf(stderr, "orbin_bench: %s\n", qPrintable(error));
        return 2;
    }

    BENCH_REPORT report;
    BENCH_FIGURES::CONTEXT context;
    context.database = database.database();
    context.copy = database.copy();
    context.big_table = database.big_table();
    context.repeats = qMax(1, parser.value(repeats).toInt());
    context.report = &report;

    std::printf("%s\nCPU: %s, %d cores; load average at start: %s; best of %d\n",
                qPrintable(QDateTime::currentDateTime().toString(Qt::ISODate)),
                qPrintable(BENCH_MEASURE::cpu_model()), BENCH_MEASURE::core_count(),
                qPrintable(BENCH_MEASURE::load_average()), context.repeats);
    std::printf("database: %s\n\n", qPrintable(context.database));
    std::fflush(stdout);

    const std::vector<std::pair<QString, std::function<void(const BENCH_FIGURES::CONTEXT&)>>> figures = {
        {QStringLiteral("load"), BENCH_FIGURES::load_and_memory},
        {QStringLiteral("connect"), BENCH_FIGURES::connect},
        {QStringLiteral("apply"), BENCH_FIGURES::apply},
        {QStringLiteral("model"), BENCH_FIGURES::model},
        {QStringLiteral("search"), BENCH_FIGURES::search},
        {QStringLiteral("comparison"), BENCH_FIGURES::comparison},
    };
    const QStringList wanted = parser.value(only).split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& name : wanted)
    {
        if (std::none_of(figures.begin(), figures.end(),
                         [&](const auto& figure) { return figure.first == name; }))
        {
            std::fprintf(stderr, "orbin_bench: no figure '%s' (see --help)\n", qPrintable(name));
            return 2;
        }
    }
    for (const auto& figure : figures)
        if (wanted.isEmpty() || wanted.contains(figure.first))
            figure.second(context);

    std::printf("\nload average at the end: %s\n", qPrintable(BENCH_MEASURE::load_average()));
    if (parser.isSet(markdown))
        report.print_markdown();
    return report.misses() > 0 ? 1 : 0;
}
