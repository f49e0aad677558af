// orbin-sample: writes a complete sample game project into a folder.

#include "sample_project.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orbin-sample"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Writes a sample game project (depot, workspace, database, game source, tools' folders and "
        "the host's project file) into an empty or new folder."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("folder"),
                                 QStringLiteral("Where the project goes; empty or new."));
    const QCommandLineOption seed(QStringLiteral("seed"),
                                  QStringLiteral("The seed; one seed, one project (1)."), QStringLiteral("n"),
                                  QStringLiteral("1"));
    const QCommandLineOption small(QStringLiteral("small"),
                                   QStringLiteral("A handful of rows a table, as tests use."));
    const QCommandLineOption scale(
        QStringLiteral("scale"),
        QStringLiteral("For benchmarks: 800 more tables and one of a million rows."));
    const QCommandLineOption scale_tables(QStringLiteral("scale-tables"),
                                          QStringLiteral("With --scale: how many more tables (800)."),
                                          QStringLiteral("n"), QStringLiteral("800"));
    const QCommandLineOption scale_rows(QStringLiteral("scale-rows"),
                                        QStringLiteral("With --scale: rows of the big table (1000000)."),
                                        QStringLiteral("n"), QStringLiteral("1000000"));
    const QCommandLineOption no_depot(QStringLiteral("no-depot"),
                                      QStringLiteral("No depot: the workspace is a plain folder."));
    const QCommandLineOption tools(
        QStringLiteral("tools"),
        QStringLiteral("Copy the tools' stand-ins (KILN.release, Slatepad.UnityRelease) "
                       "from this folder into the binaries folder."),
        QStringLiteral("folder"));
    const QCommandLineOption timings(QStringLiteral("timings"),
                                     QStringLiteral("Say how long each phase took."));
    parser.addOptions({seed, small, scale, scale_tables, scale_rows, no_depot, tools, timings});
    parser.process(app);

    QTextStream err(stderr);
    if (parser.positionalArguments().size() != 1)
    {
        err << "orbin-sample: give the folder to write the project into (see --help)\n";
        return 2;
    }
    bool ok = false;
    SAMPLE_OPTIONS options;
    options.seed = parser.value(seed).toULongLong(&ok);
    if (!ok)
    {
        err << "orbin-sample: the seed must be a whole number: " << parser.value(seed) << "\n";
        return 2;
    }
    options.size = parser.isSet(small) ? SAMPLE_SIZE::SMALL : SAMPLE_SIZE::NORMAL;
    options.with_depot = !parser.isSet(no_depot);
    options.tools_folder = parser.value(tools);
    options.timings = parser.isSet(timings);
    if (parser.isSet(scale))
    {
        options.scale_tables = parser.value(scale_tables).toInt(&ok);
        if (ok)
            options.scale_rows = parser.value(scale_rows).toInt(&ok);
        if (!ok || options.scale_tables < 0 || options.scale_rows < 0)
        {
            err << "orbin-sample: --scale-tables and --scale-rows take whole numbers\n";
            return 2;
        }
    }

    QElapsedTimer timer;
    timer.start();
    const QString folder = parser.positionalArguments().constFirst();
    QStringList notes;
    const QString error = SAMPLE_PROJECT::generate(folder, options, nullptr, &notes);
    if (!error.isEmpty())
    {
        err << "orbin-sample: " << error << "\n";
        return 1;
    }
    QTextStream out(stdout);
    for (const QString& note : qAsConst(notes))
        out << "orbin-sample: " << note << "\n";
    out << "orbin-sample: project written to " << folder << " in " << timer.elapsed() << " ms\n";
    return 0;
}
