#include "quill_project_file.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

QString QUILL_PROJECT_FILE::default_file_name()
{
    return QStringLiteral("quill-project.ini");
}

bool QUILL_PROJECT_FILE::read(const QString& path, LIBRARY_PROXY::PROJECT_PATHS& paths, QString& error)
{
    QFileInfo info(path);
    if (info.isDir())
        info = QFileInfo(QDir(path).filePath(default_file_name()));
    QFile file(info.absoluteFilePath());
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
    {
        error = QStringLiteral("Cannot read the project file '%1'").arg(info.absoluteFilePath());
        return false;
    }
    QString text = QString::fromUtf8(file.readAll());
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return parse(text, info.absolutePath(), info.absoluteFilePath(), paths, error);
}

bool QUILL_PROJECT_FILE::parse(const QString& text, const QString& base_folder, const QString& label,
                               LIBRARY_PROXY::PROJECT_PATHS& paths, QString& error)
{
    const QDir base(base_folder);
    LIBRARY_PROXY::PROJECT_PATHS result = LIBRARY_PROXY::PROJECT_PATHS::none();
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int index = 0; index < lines.size(); ++index)
    {
        const QString line = lines[index].trimmed();
        const QString where = QStringLiteral("%1:%2").arg(label).arg(index + 1);
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')) || line.startsWith(QLatin1Char(';')))
            continue;
        if (line.startsWith(QLatin1Char('[')))
        {
            if (line.compare(QLatin1String("[project]"), Qt::CaseInsensitive) != 0)
            {
                error = QStringLiteral("%1: unknown section %2, only [project] is allowed").arg(where, line);
                return false;
            }
            continue;
        }
        const int equals = line.indexOf(QLatin1Char('='));
        if (equals < 0)
        {
            error = QStringLiteral("%1: expected 'key = path', found '%2'").arg(where, line);
            return false;
        }
        const QString key = line.left(equals).trimmed().toLower();
        QString value = line.mid(equals + 1).trimmed();
        if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
            value = value.mid(1, value.size() - 2);
        if (value.isEmpty())
        {
            error = QStringLiteral("%1: '%2' has no path").arg(where, key);
            return false;
        }
        value.replace(QLatin1Char('\\'), QLatin1Char('/'));
        const QString absolute = QDir::cleanPath(base.absoluteFilePath(value));
        if (key == QLatin1String("binaries"))
            result.binaries_path = absolute;
        else if (key == QLatin1String("design_data"))
            result.design_data_path = absolute;
        else if (key == QLatin1String("csv_import"))
            result.csv_import_path = absolute;
        else if (key == QLatin1String("connection"))
            result.connection_path = absolute;
        else if (key == QLatin1String("working_data"))
            result.working_data_paths << absolute;
        else
        {
            error =
                QStringLiteral("%1: unknown key '%2' (known: binaries, design_data, csv_import, connection, "
                               "working_data)")
                    .arg(where, key);
            return false;
        }
    }
    if (result.binaries_path.isEmpty())
    {
        error = QStringLiteral("%1: no 'binaries' path").arg(label);
        return false;
    }
    result.working_data_path = result.working_data_paths.value(0);
    paths = result;
    return true;
}
