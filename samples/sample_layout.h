#pragma once

#include <QString>

// Where everything of a sample project lies, below its folder:
//
//   quill-project.ini          the host's project file, pointing into the workspace
//   depot.git/                 the depot: a bare git repository
//   workspace/                 the workspace, a clone of the depot (its client root)
//     trunk/                   the branch root (the binaries path less two folders)
//       common/                the game's source tree that code generation edits
//       game/
//         binaries/            the tools (KILN, Slatepad) and kiln/ with its rule files
//         raw_data/db/         the database (there is no binaries/db: the session falls back here)
//         raw_data/CobaltDesignData/   design data: exported tables, campaigns/, campaign_maps/
//         raw_data/csv_import/ CSV files for import
//         raw_data/localisation/<language>/   LOC files
//         raw_data/UI/         interface layouts
//         working_data/        exported binaries (db/, text/db/, UI/)
//         Text/                localisation tab files
struct SAMPLE_LAYOUT
{
    static SAMPLE_LAYOUT of(const QString& folder);

    QString root;
    QString project_file;
    QString depot;
    QString workspace;
    QString branch_root;
    QString game;
    QString binaries;
    QString raw_data;
    QString database;
    QString design_data;
    QString csv_import;
    QString localisation;
    QString working_data;
    QString text;
};
