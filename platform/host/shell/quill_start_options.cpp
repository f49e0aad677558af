#include "quill_start_options.h"

#include "quill_project_file.h"

#include <QtCore/QCommandLineParser>

namespace
{
struct OPTIONS
{
    QCommandLineOption project{
        QStringLiteral("project"),
        QStringLiteral("The project file (quill-project.ini), or the folder holding it."),
        QStringLiteral("file")};
    QCommandLineOption binaries{QStringLiteral("binaries"), QStringLiteral("The project's binaries folder."),
                                QStringLiteral("folder")};
    QCommandLineOption design_data{QStringLiteral("design-data"),
                                   QStringLiteral("The project's design data folder."),
                                   QStringLiteral("folder")};
    QCommandLineOption csv_import{QStringLiteral("csv-import"),
                                  QStringLiteral("The project's CSV import folder."),
                                  QStringLiteral("folder")};
    QCommandLineOption connection{QStringLiteral("connection"),
                                  QStringLiteral("The project's connection folder."),
                                  QStringLiteral("folder")};
    QCommandLineOption working_data{
        QStringLiteral("working-data"),
        QStringLiteral("A working data folder; repeat for more, the first is in use."),
        QStringLiteral("folder")};
    QCommandLineOption plugins{
        QStringLiteral("plugins"),
        QStringLiteral("Load plugins from this folder instead of the one next to quill."),
        QStringLiteral("folder")};
    QCommandLineOption full{QStringLiteral("full"),
                            QStringLiteral("Full configuration: plugins show every command they have.")};
    QCommandLineOption open{QStringLiteral("open"),
                            QStringLiteral("Run this plugin command once the plugins are loaded, as its "
                                           "menu shows it."),
                            QStringLiteral("command")};

    void add_to(QCommandLineParser& parser) const
    {
        parser.setApplicationDescription(
            QStringLiteral("Quill, the tool shell: opens a project and its plugins."));
        parser.addHelpOption();
        parser.addVersionOption();
        parser.addOptions(
            {project, binaries, design_data, csv_import, connection, working_data, plugins, full, open});
    }
};
} // namespace

bool QUILL_START_OPTIONS::parse(const QStringList& arguments, QUILL_START_OPTIONS& options, QString& error)
{
    OPTIONS known;
    QCommandLineParser parser;
    known.add_to(parser);
    if (!parser.parse(arguments))
    {
        error = parser.errorText();
        return false;
    }
    if (!parser.positionalArguments().isEmpty())
    {
        error =
            QStringLiteral("Unexpected argument '%1'; see --help").arg(parser.positionalArguments().first());
        return false;
    }
    QUILL_START_OPTIONS result;
    result.help_requested = parser.isSet(QStringLiteral("help"));
    result.version_requested = parser.isSet(QStringLiteral("version"));
    result.project_file = parser.value(known.project);
    result.binaries_path = parser.value(known.binaries);
    result.design_data_path = parser.value(known.design_data);
    result.csv_import_path = parser.value(known.csv_import);
    result.connection_path = parser.value(known.connection);
    result.working_data_paths = parser.values(known.working_data);
    result.plugin_folder = parser.value(known.plugins);
    result.full_configuration = parser.isSet(known.full);
    result.open_command = parser.value(known.open);
    options = result;
    return true;
}

QString QUILL_START_OPTIONS::help_text()
{
    OPTIONS known;
    QCommandLineParser parser;
    known.add_to(parser);
    return parser.helpText();
}

bool QUILL_START_OPTIONS::project_paths(LIBRARY_PROXY::PROJECT_PATHS& paths, QString& error) const
{
    LIBRARY_PROXY::PROJECT_PATHS result = LIBRARY_PROXY::PROJECT_PATHS::none();
    if (!project_file.isEmpty() && !QUILL_PROJECT_FILE::read(project_file, result, error))
        return false;
    if (!binaries_path.isEmpty())
        result.binaries_path = binaries_path;
    if (!design_data_path.isEmpty())
        result.design_data_path = design_data_path;
    if (!csv_import_path.isEmpty())
        result.csv_import_path = csv_import_path;
    if (!connection_path.isEmpty())
        result.connection_path = connection_path;
    if (!working_data_paths.isEmpty())
    {
        result.working_data_paths = working_data_paths;
        result.working_data_path = working_data_paths.first();
    }
    paths = result;
    return true;
}
