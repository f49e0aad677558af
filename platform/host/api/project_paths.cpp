#include "project_paths.h"

#include <QtCore/QDir>

namespace LIBRARY_PROXY
{
namespace
{
PROJECT_PATHS& current()
{
    static PROJECT_PATHS paths = PROJECT_PATHS::none();
    return paths;
}

QString normalised(const QString& path)
{
    if (path.trimmed().isEmpty())
        return QString();
    QString result = path;
    result.replace(QLatin1Char('\\'), QLatin1Char('/'));
    result = QDir::cleanPath(QDir::current().absoluteFilePath(result));
    if (!result.endsWith(QLatin1Char('/')))
        result += QLatin1Char('/');
    return result;
}
} // namespace

PROJECT_PATHS::PROJECT_PATHS() : PROJECT_PATHS(current()) {}

PROJECT_PATHS::PROJECT_PATHS(NONE) {}

PROJECT_PATHS PROJECT_PATHS::none()
{
    return PROJECT_PATHS(NONE());
}

QString PROJECT_PATHS::get_working_data_path(int index) const
{
    return working_data_paths.value(index);
}

int PROJECT_PATHS::all_working_data_count() const
{
    return working_data_paths.size();
}

bool PROJECT_PATHS::is_configured() const
{
    return !binaries_path.isEmpty();
}

void PROJECT_PATHS::set_current(const PROJECT_PATHS& paths)
{
    PROJECT_PATHS stored = none();
    stored.binaries_path = normalised(paths.binaries_path);
    stored.design_data_path = normalised(paths.design_data_path);
    stored.csv_import_path = normalised(paths.csv_import_path);
    stored.connection_path = normalised(paths.connection_path);
    for (const QString& path : paths.working_data_paths)
    {
        const QString clean = normalised(path);
        if (!clean.isEmpty() && !stored.working_data_paths.contains(clean))
            stored.working_data_paths << clean;
    }
    stored.working_data_path = normalised(paths.working_data_path);
    if (stored.working_data_path.isEmpty())
        stored.working_data_path = stored.working_data_paths.value(0);
    if (!stored.working_data_path.isEmpty())
    {
        stored.working_data_paths.removeAll(stored.working_data_path);
        stored.working_data_paths.prepend(stored.working_data_path);
    }
    current() = stored;
}

void PROJECT_PATHS::clear_current()
{
    current() = none();
}
} // namespace LIBRARY_PROXY
