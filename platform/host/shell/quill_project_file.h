#pragma once

#include "project_paths.h"

#include <QtCore/QString>

// The small file that tells quill where a project's folders are.
//
//     # quill-project.ini: paths are relative to this file's folder unless absolute
//     [project]
//     binaries = binaries
//     design_data = design_data
//     csv_import = design_data/csv_import
//     connection = raw_data/db
//     working_data = working_data
//     working_data = mods/working_data      (repeat the key for more folders; the first is in use)
//
// Lines starting with '#' or ';' are comments; the "[project]" header is
// optional, no other section is allowed. "binaries" is required, every other
// key optional. Unknown keys are errors, so a typo never passes unnoticed.
class QUILL_PROJECT_FILE
{
public:
    // The name quill looks for when given a folder instead of a file.
    static QString default_file_name();

    // Reads a project file, or the default file of a folder. False with a
    // message naming the file (and line) when it cannot be read or is wrong.
    static bool read(const QString& path, LIBRARY_PROXY::PROJECT_PATHS& paths, QString& error);

    // The text of a project file; relative paths are taken from base_folder,
    // `label` names the file in messages.
    static bool parse(const QString& text, const QString& base_folder, const QString& label,
                      LIBRARY_PROXY::PROJECT_PATHS& paths, QString& error);
};
