#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace LIBRARY_PROXY
{
class PROJECT_PATHS;
}

// A value copy of the project paths the host gave, taken when it is built.
// Cheap: build one wherever paths are needed rather than keeping one, so a
// change of project in the host is seen by the next user.
class PROJECT_PATH_SET
{
public:
    // The host's current project.
    PROJECT_PATH_SET();
    explicit PROJECT_PATH_SET(const LIBRARY_PROXY::PROJECT_PATHS& paths);

    const QString& binaries_path() const { return m_binaries_path; }
    const QString& design_data_path() const { return m_design_data_path; }
    const QString& csv_import_path() const { return m_csv_import_path; }
    const QString& connection_path() const { return m_connection_path; }
    const QString& working_data_path() const { return m_working_data_path; }
    // Every working data folder, the one in use first.
    const QStringList& all_working_data_paths() const { return m_all_working_data_paths; }

private:
    QString m_binaries_path;
    QString m_design_data_path;
    QString m_csv_import_path;
    QString m_connection_path;
    QString m_working_data_path;
    QStringList m_all_working_data_paths;
};
