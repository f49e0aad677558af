#pragma once

#include "quill_plugin_manager.h"
#include "quill_start_options.h"

#include <QtWidgets/QMainWindow>

class QLabel;
class QListWidget;
class QMenu;

// The host's own window, titled "Quill": a menu per plugin with the plugin's
// actions, the project in use, and a log of what happened. Closing it asks
// every plugin's can_close(); a refusal keeps quill open.
class QUILL_MAIN_WINDOW : public QMainWindow
{
    Q_OBJECT

public:
    explicit QUILL_MAIN_WINDOW(QWidget* parent = nullptr);
    ~QUILL_MAIN_WINDOW() override;

    // Sets the current project and the full-configuration switch from
    // `options`, loads the plugins, builds their menus, and tells the user
    // (through the prompt seam) what went wrong: a project file that cannot be
    // read, no project at all, plugins that failed to load.
    void start(const QUILL_START_OPTIONS& options);

    QUILL_PLUGIN_MANAGER& plugin_manager() { return m_plugins; }
    // The plugin menus, in load order.
    QList<QMenu*> plugin_menus() const { return m_plugin_menus; }
    // Triggers the plugin command whose menu text, without "&", is text;
    // false, with a message, when no plugin offers it.
    bool run_command(const QString& text);
    QStringList log_lines() const;

    static QIcon host_icon();

signals:
    void logged(const QString& line);

public slots:
    void log(const QString& line);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void build_plugin_menus();
    void show_project(const LIBRARY_PROXY::PROJECT_PATHS& paths);
    void show_about();

    QUILL_PLUGIN_MANAGER m_plugins;
    QLabel* m_project_label = nullptr;
    QListWidget* m_log = nullptr;
    QMenu* m_help_menu = nullptr;
    QList<QMenu*> m_plugin_menus;
};
