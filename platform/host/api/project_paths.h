#pragma once

#include "quill_host_api_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace LIBRARY_PROXY
{
// The paths of the project the host has open. A default-constructed object is
// a copy of the host's current project, taken at construction; the host sets
// that once at start-up (tests set their own). With no project every path is
// empty.
//
// Every non-empty path is absolute, uses '/' and ends with '/' (callers may
// append a name directly, or with a separator of their own).
class QUILL_HOST_API PROJECT_PATHS
{
public:
    PROJECT_PATHS();

    QString binaries_path;
    QString design_data_path;
    QString csv_import_path;
    QString connection_path;
    // The working data folder in use; the first of working_data_paths.
    QString working_data_path;
    // Every working data folder of the project.
    QStringList working_data_paths;

    // The index-th working data folder; empty when out of range.
    QString get_working_data_path(int index) const;
    int all_working_data_count() const;

    // True when a project is configured, that is when binaries_path is set.
    bool is_configured() const;

    // Makes `paths` the current project of the whole process, normalised as
    // said above (relative paths are taken from the working directory). When
    // working_data_path is empty the first of working_data_paths is used, and
    // it always heads working_data_paths.
    static void set_current(const PROJECT_PATHS& paths);
    // No project.
    static void clear_current();
    // An object with every path empty, to fill in before set_current.
    static PROJECT_PATHS none();

private:
    struct NONE
    {
    };
    explicit PROJECT_PATHS(NONE);
};
} // namespace LIBRARY_PROXY
