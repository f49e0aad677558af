#pragma once

#include "sample_context.h"
#include "sample_layout.h"

#include <QString>
#include <QStringList>

// What to generate.
struct SAMPLE_OPTIONS
{
    quint64 seed = 1;
    SAMPLE_SIZE size = SAMPLE_SIZE::NORMAL;
    // Make the depot and the workspace's history; without it the workspace
    // is a plain folder (the engine then works without version control).
    bool with_depot = true;
    // Benchmark tables: this many more tables and one table of this many rows.
    int scale_tables = 0;
    int scale_rows = 0;
    // Where the stand-ins of the studio's tools were built (copied into the
    // binaries folder when there); empty for none.
    QString tools_folder;
    // Add the time each phase took to the notes.
    bool timings = false;
};

// A complete sample project, made in one call:
//
//     SAMPLE_LAYOUT layout;
//     const QString error = SAMPLE_PROJECT::generate_small(folder.path(), &layout);
//     QVERIFY2(error.isEmpty(), qPrintable(error));
//     // layout.database, layout.binaries, layout.project_file ...
//
// The folder must be absent or empty: nothing there is ever overwritten.
// For the same options the files are the same byte for byte, apart from the
// depot's and the workspace's git folders and the local git configuration.
class SAMPLE_PROJECT
{
public:
    static QString generate(const QString& folder, const SAMPLE_OPTIONS& options,
                            SAMPLE_LAYOUT* layout = nullptr, QStringList* notes = nullptr);

    // For tests: a small project with its depot, seed 1.
    static QString generate_small(const QString& folder, SAMPLE_LAYOUT* layout = nullptr);
    // For tests that need only a database: the sample's tables with few
    // rows each, in `database_path`, without anything around it.
    static QString generate_database(const QString& database_path, quint64 seed = 1,
                                     SAMPLE_SIZE size = SAMPLE_SIZE::SMALL);
};
