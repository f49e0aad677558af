#pragma once

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QString>

class QAction;
class QDockWidget;
class QListWidget;
class QMainWindow;
class QMdiArea;
class QMenu;
class QProgressBar;
class QStatusBar;

// The widgets of the main window, built in code: the MDI area, the menus
// with every command, and the status dock with its list and progress bar.
// It connects nothing; which commands are shown and what they run is the
// main window's business.
class VELD_MAIN_WINDOW_UI
{
public:
    void setup(QMainWindow& window);

    // The command with this text (as shown, '&' included); null when none.
    QAction* action(const QString& text) const { return m_actions.value(text); }
    // Every command, in the order built.
    const QList<QAction*>& all_actions() const { return m_action_list; }
    // The commands (and submenus) of the menus that this configuration
    // builds but does not offer.
    const QList<QAction*>& optional_actions() const { return m_optional; }

    QMdiArea* mdi_area = nullptr;
    QDockWidget* status_dock = nullptr;
    QStatusBar* status_bar = nullptr;
    QListWidget* status_list = nullptr;
    QProgressBar* progress_bar = nullptr;

    QMenu* connection_menu = nullptr;
    QMenu* view_menu = nullptr;
    QMenu* arrange_menu = nullptr;
    QMenu* export_menu = nullptr;
    QMenu* tasks_menu = nullptr;
    QMenu* schema_menu = nullptr;
    QMenu* code_menu = nullptr;
    QMenu* text_approval_menu = nullptr;
    QMenu* audio_menu = nullptr;
    QMenu* options_menu = nullptr;
    QMenu* help_menu = nullptr;

private:
    QAction* add(QMenu* menu, const QString& text, bool optional = false);
    QMenu* add_menu(QMenu* parent, const QString& title, bool optional);

    QMainWindow* m_window = nullptr;
    QHash<QString, QAction*> m_actions;
    QList<QAction*> m_action_list;
    QList<QAction*> m_optional;
};
