#include "project_path_set.h"

#include "project_paths.h"

PROJECT_PATH_SET::PROJECT_PATH_SET() : PROJECT_PATH_SET(LIBRARY_PROXY::PROJECT_PATHS()) {}

PROJECT_PATH_SET::PROJECT_PATH_SET(const LIBRARY_PROXY::PROJECT_PATHS& paths)
    : m_binaries_path(paths.binaries_path), m_design_data_path(paths.design_data_path),
      m_csv_import_path(paths.csv_import_path), m_connection_path(paths.connection_path),
      m_working_data_path(paths.working_data_path)
{
    for (int index = 0; index < paths.all_working_data_count(); ++index)
        m_all_working_data_paths << paths.get_working_data_path(index);
}
