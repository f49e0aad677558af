#include "quill_main_window.h"

#include "app_extension_plugin_interface.h"
#include "project_paths.h"
#include "prompt.h"
#include "quill_host_options.h"
#include "quill_icons.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTime>
#include <QtGui/QCloseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QAction>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QVBoxLayout>

QUILL_MAIN_WINDOW::QUILL_MAIN_WINDOW(QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Quill"));
    setWindowIcon(host_icon());
    setObjectName(QStringLiteral("QUILL_MAIN_WINDOW"));
    resize(640, 400);

    QMenu* file_menu = menuBar()->addMenu(QStringLiteral("&File"));
    QAction* quit = file_menu->addAction(QStringLiteral("&Quit"));
    quit->setShortcut(QKeySequence::Quit);
    connect(quit, &QAction::triggered, this, &QWidget::close);

    m_help_menu = menuBar()->addMenu(QStringLiteral("&Help"));
    connect(m_help_menu->addAction(QStringLiteral("&About Quill")), &QAction::triggered, this,
            &QUILL_MAIN_WINDOW::show_about);

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    m_project_label = new QLabel(central);
    m_project_label->setObjectName(QStringLiteral("project_label"));
    m_project_label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_project_label->setWordWrap(true);
    m_log = new QListWidget(central);
    m_log->setObjectName(QStringLiteral("log"));
    layout->addWidget(m_project_label);
    layout->addWidget(new QLabel(QStringLiteral("Log:"), central));
    layout->addWidget(m_log, 1);
    setCentralWidget(central);
    show_project(LIBRARY_PROXY::PROJECT_PATHS());

    connect(&m_plugins, &QUILL_PLUGIN_MANAGER::logged, this, &QUILL_MAIN_WINDOW::log);
}

QUILL_MAIN_WINDOW::~QUILL_MAIN_WINDOW() = default;

QIcon QUILL_MAIN_WINDOW::host_icon()
{
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x2d, 0x5b, 0x8c));
    painter.drawRoundedRect(QRectF(2, 2, 60, 60), 12, 12);
    // A feather: a curved vane and its shaft.
    QPainterPath vane;
    vane.moveTo(18, 50);
    vane.cubicTo(20, 30, 34, 14, 50, 10);
    vane.cubicTo(48, 28, 36, 42, 18, 50);
    painter.setBrush(QColor(0xf4, 0xf1, 0xe8));
    painter.drawPath(vane);
    painter.setPen(QPen(QColor(0x2d, 0x5b, 0x8c), 2));
    painter.drawLine(QPointF(14, 54), QPointF(44, 18));
    painter.end();
    return QUILL_ICONS::create_icon(pixmap);
}

void QUILL_MAIN_WINDOW::log(const QString& line)
{
    m_log->addItem(QTime::currentTime().toString(Qt::TextDate) + QStringLiteral("> ") + line);
    m_log->scrollToBottom();
    emit logged(line);
}

QStringList QUILL_MAIN_WINDOW::log_lines() const
{
    QStringList lines;
    for (int row = 0; row < m_log->count(); ++row)
        lines << m_log->item(row)->text();
    return lines;
}

void QUILL_MAIN_WINDOW::start(const QUILL_START_OPTIONS& options)
{
    QUILL_HOST_OPTIONS::set_full_configuration(options.full_configuration);
    if (options.full_configuration)
        log(QStringLiteral("Full configuration: plugins show every command"));

    // The project must be in place before any plugin is loaded: plugins read
    // it when they are built.
    QStringList problems;
    LIBRARY_PROXY::PROJECT_PATHS paths = LIBRARY_PROXY::PROJECT_PATHS::none();
    QString error;
    if (!options.project_paths(paths, error))
        problems << error;
    LIBRARY_PROXY::PROJECT_PATHS::set_current(paths);
    const LIBRARY_PROXY::PROJECT_PATHS current;
    show_project(current);
    if (current.is_configured())
    {
        log(QStringLiteral("Project: binaries in %1").arg(current.binaries_path));
        for (const QString& folder :
             {current.binaries_path, current.design_data_path, current.csv_import_path,
              current.connection_path, current.working_data_path})
        {
            if (!folder.isEmpty() && !QFileInfo(folder).isDir())
                log(QStringLiteral("Project folder %1 does not exist").arg(folder));
        }
    }

    const QString plugin_folder = options.plugin_folder.isEmpty()
                                      ? QCoreApplication::applicationDirPath() + QStringLiteral("/plugins")
                                      : options.plugin_folder;
    log(QStringLiteral("Loading plugins from %1").arg(QDir::cleanPath(plugin_folder)));
    const QStringList plugin_problems = m_plugins.load_folder(plugin_folder);
    for (const QString& problem : plugin_problems)
        log(problem);
    build_plugin_menus();

    if (!problems.isEmpty())
        prompt::warning(this, QStringLiteral("Quill"), problems.join(QStringLiteral("\n\n")));
    if (!current.is_configured() && problems.isEmpty())
    {
        log(QStringLiteral("No project is configured"));
        prompt::information(this, QStringLiteral("Quill"),
                            QStringLiteral("No project is configured.\n\nStart quill with --project and a "
                                           "quill-project.ini file (or the folder holding one), or with "
                                           "--binaries and the other path options. See quill --help."));
    }
    if (!plugin_problems.isEmpty())
        prompt::warning(this, QStringLiteral("Quill"),
                        QStringLiteral("Some plugins could not be loaded:\n\n") +
                            plugin_problems.join(QStringLiteral("\n\n")));
    if (!options.open_command.isEmpty())
        run_command(options.open_command);
}

bool QUILL_MAIN_WINDOW::run_command(const QString& text)
{
    for (QMenu* menu : qAsConst(m_plugin_menus))
    {
        for (QAction* action : menu->actions())
        {
            if (action->text().remove(QLatin1Char('&')) == text && action->isEnabled())
            {
                log(QStringLiteral("Running %1").arg(text));
                action->trigger();
                return true;
            }
        }
    }
    log(QStringLiteral("No plugin offers the command '%1'").arg(text));
    prompt::warning(this, QStringLiteral("Quill"),
                    QStringLiteral("No plugin offers the command '%1'.").arg(text));
    return false;
}

void QUILL_MAIN_WINDOW::build_plugin_menus()
{
    for (const auto& plugin : m_plugins.plugins())
    {
        const QString name = plugin->description.name.isEmpty() ? QFileInfo(plugin->file).baseName()
                                                                : plugin->description.name;
        auto* menu = new QMenu(name, menuBar());
        // No icon on the menu itself: a menu bar shows an icon instead of the
        // title, and the plugin's name is what users look for.
        menu->addActions(plugin->actions);
        menu->setEnabled(plugin->description.enabled);
        menuBar()->insertMenu(m_help_menu->menuAction(), menu);
        m_plugin_menus << menu;
        if (!plugin->description.categories.isEmpty())
            log(QStringLiteral("%1: %2").arg(name,
                                             plugin->description.categories.join(QStringLiteral(", "))));
    }
}

void QUILL_MAIN_WINDOW::show_project(const LIBRARY_PROXY::PROJECT_PATHS& paths)
{
    if (!paths.is_configured())
    {
        m_project_label->setText(QStringLiteral("No project is configured."));
        return;
    }
    QStringList lines;
    lines << QStringLiteral("Binaries: %1").arg(paths.binaries_path);
    lines << QStringLiteral("Design data: %1").arg(paths.design_data_path);
    lines << QStringLiteral("CSV import: %1").arg(paths.csv_import_path);
    lines << QStringLiteral("Connection: %1").arg(paths.connection_path);
    for (int index = 0; index < paths.all_working_data_count(); ++index)
        lines << QStringLiteral("Working data: %1").arg(paths.get_working_data_path(index));
    m_project_label->setText(lines.join(QLatin1Char('\n')));
}

void QUILL_MAIN_WINDOW::show_about()
{
    QStringList names;
    for (const auto& plugin : m_plugins.plugins())
        names << plugin->description.name;
    prompt::information(
        this, QStringLiteral("About Quill"),
        QStringLiteral("Quill, the tool shell.\n\nPlugins: %1")
            .arg(names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", "))));
}

void QUILL_MAIN_WINDOW::closeEvent(QCloseEvent* event)
{
    QString refusing;
    if (!m_plugins.can_close(refusing))
    {
        event->ignore();
        log(QStringLiteral("%1 keeps Quill open").arg(refusing));
        return;
    }
    m_plugins.release_all_widgets();
    event->accept();
}
