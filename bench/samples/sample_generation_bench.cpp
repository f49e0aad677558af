// How long making a sample project takes, by size and phase.
// Usage: sample_generation_bench [scale tables] [scale rows] [repeats]
//
// Each run makes its project in a fresh temporary folder; the best time of
// the repeats is printed, in milliseconds, with the phases of that run.

#include "sample_project.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <limits>

namespace
{
void measure(const char* label, SAMPLE_OPTIONS options, int repeats)
{
    options.timings = true;
    qint64 best = std::numeric_limits<qint64>::max();
    QStringList best_notes;
    for (int run = 0; run < repeats; ++run)
    {
        QTemporaryDir folder;
        QStringList notes;
        QElapsedTimer timer;
        timer.start();
        const QString error = SAMPLE_PROJECT::generate(folder.filePath("project"), options, nullptr, &notes);
        const qint64 elapsed = timer.elapsed();
        if (!error.isEmpty())
        {
            std::printf("%s: %s\n", label, qPrintable(error));
            return;
        }
        if (elapsed < best)
        {
            best = elapsed;
            best_notes = notes;
        }
    }
    std::printf("%-32s %8lld ms\n", label, static_cast<long long>(best));
    for (const QString& note : qAsConst(best_notes))
        std::printf("    %s\n", qPrintable(note));
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const int scale_tables = arguments.value(1, "800").toInt();
    const int scale_rows = arguments.value(2, "1000000").toInt();
    const int repeats = qMax(1, arguments.value(3, "3").toInt());

    SAMPLE_OPTIONS small;
    small.size = SAMPLE_SIZE::SMALL;
    measure("small, with depot", small, repeats);
    small.with_depot = false;
    measure("small, no depot", small, repeats);
    SAMPLE_OPTIONS normal;
    measure("normal, with depot", normal, repeats);
    SAMPLE_OPTIONS scale;
    scale.with_depot = false;
    scale.scale_tables = scale_tables;
    scale.scale_rows = scale_rows;
    measure("scale, no depot", scale, 1);
    scale.with_depot = true;
    measure("scale, with depot", scale, 1);
    return 0;
}
