#pragma once

#include "project_paths.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

// How quill was asked to start: its command line, parsed.
//
//     quill [--project <file or folder>] [--binaries <folder>] [--design-data <folder>]
//           [--csv-import <folder>] [--connection <folder>] [--working-data <folder>]...
//           [--plugins <folder>] [--full] [--open <command>]
//
// The path options override the project file's entries of the same name; with
// no project file they are the whole project. Relative paths are taken from
// the working directory.
struct QUILL_START_OPTIONS
{
    QString project_file;
    QString binaries_path;
    QString design_data_path;
    QString csv_import_path;
    QString connection_path;
    QStringList working_data_paths;
    // Empty: the "plugins" folder next to the quill executable.
    QString plugin_folder;
    bool full_configuration = false;
    // A plugin command to run once the plugins are loaded, by its menu text
    // without "&" (e.g. "ORBIN - Database Visual Editor"). Empty: none.
    QString open_command;

    bool help_requested = false;
    bool version_requested = false;

    // False with a message for a command line that does not parse.
    static bool parse(const QStringList& arguments, QUILL_START_OPTIONS& options, QString& error);
    static QString help_text();

    // The project these options describe: the project file's paths, if one
    // is given, with the path options over them. A result that is not
    // is_configured() means no project was given. False with a message when
    // the project file cannot be read.
    bool project_paths(LIBRARY_PROXY::PROJECT_PATHS& paths, QString& error) const;
};
