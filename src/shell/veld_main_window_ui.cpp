#include "veld_main_window_ui.h"

#include <QtWidgets/QAction>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QStatusBar>

QAction* VELD_MAIN_WINDOW_UI::add(QMenu* menu, const QString& text, bool optional)
{
    auto* action = new QAction(text, m_window);
    if (menu)
        menu->addAction(action);
    m_actions.insert(text, action);
    m_action_list << action;
    if (optional)
        m_optional << action;
    return action;
}

QMenu* VELD_MAIN_WINDOW_UI::add_menu(QMenu* parent, const QString& title, bool optional)
{
    QMenu* menu = parent ? parent->addMenu(title) : m_window->menuBar()->addMenu(title);
    if (optional)
        m_optional << menu->menuAction();
    return menu;
}

void VELD_MAIN_WINDOW_UI::setup(QMainWindow& window)
{
    m_window = &window;
    window.resize(1088, 763);
    window.setWindowTitle(QStringLiteral("ORBIN - Database Visual Editor"));

    mdi_area = new QMdiArea(&window);
    mdi_area->setObjectName(QStringLiteral("mdiArea"));
    window.setCentralWidget(mdi_area);

    const bool optional = true;

    connection_menu = add_menu(nullptr, QStringLiteral("&Connection"), false);
    add(connection_menu, QStringLiteral("&Connect"));
    add(connection_menu, QStringLiteral("&Disconnect"));
    connection_menu->addSeparator();
    add(connection_menu, QStringLiteral("Display &Local Changes"));
    add(connection_menu, QStringLiteral("&Revert Changes"), optional);
    add(connection_menu, QStringLiteral("Revert Exported Changes"), optional);
    connection_menu->addSeparator();
    add(connection_menu, QStringLiteral("Shelve/Unshelve Local Changes"), optional);
    connection_menu->addSeparator();
    add(connection_menu, QStringLiteral("&Merge Current DB"), optional);
    add(connection_menu, QStringLiteral("Submit Changes &with Data"), optional);
    add(connection_menu, QStringLiteral("Submit Schema Change Request"), optional);

    view_menu = add_menu(nullptr, QStringLiteral("&View"), false);
    add(view_menu, QStringLiteral("&Table Launcher"));
    add(view_menu, QStringLiteral("&Query Launcher"), optional);
    add(view_menu, QStringLiteral("&Form Launcher"), optional);
    view_menu->addSeparator();
    add(view_menu, QStringLiteral("&Database Differences"), optional);
    view_menu->addSeparator();
    add(view_menu, QStringLiteral("Simple SQL Query"));
    view_menu->addSeparator();
    arrange_menu = add_menu(view_menu, QStringLiteral("&Arrange Windows"), false);
    add(arrange_menu, QStringLiteral("&Fill Area"));
    add(arrange_menu, QStringLiteral("&Cascade"));

    export_menu = add_menu(nullptr, QStringLiteral("&Export"), false);
    add(export_menu, QStringLiteral("&Export Single Table(s)"));
    add(export_menu, QStringLiteral("&Export Changes to Binary"));
    export_menu->addSeparator();
    add(export_menu, QStringLiteral("&Process Campaign"), optional);

    tasks_menu = add_menu(nullptr, QStringLiteral("Extra &Tasks"), false);
    add(tasks_menu, QStringLiteral("Connect &Without Merge"), optional);
    tasks_menu->addSeparator();
    add(tasks_menu, QStringLiteral("&Merge and Lock for Checkin"), optional);
    add(tasks_menu, QStringLiteral("&Submit Changes"), optional);
    tasks_menu->addSeparator();
    schema_menu = add_menu(tasks_menu, QStringLiteral("Schema Changes"), optional);
    add(schema_menu, QStringLiteral("New Request"), optional);
    add(schema_menu, QStringLiteral("Show Requests"), optional);
    schema_menu->addSeparator();
    add(schema_menu, QStringLiteral("Add New Table"), optional);
    add(schema_menu, QStringLiteral("Edit Table Schema"), optional);
    add(schema_menu, QStringLiteral("Remove Table Schema"), optional);
    schema_menu->addSeparator();
    add(schema_menu, QStringLiteral("Display &schema changes"), optional);
    code_menu = add_menu(tasks_menu, QStringLiteral("&Code Generation"), optional);
    add(code_menu, QStringLiteral("Cobalt Codebase: &Add Table"), optional);
    add(tasks_menu, QStringLiteral("Refresh unique ID lookup table"), optional);
    tasks_menu->addSeparator();
    add(tasks_menu, QStringLiteral("Update all records with uuids"), optional);
    add(tasks_menu, QStringLiteral("Update all schema fields with uuids"), optional);
    tasks_menu->addSeparator();
    add(tasks_menu, QStringLiteral("Global search"));
    tasks_menu->addSeparator();
    text_approval_menu = add_menu(tasks_menu, QStringLiteral("Text Approval"), optional);
    add(text_approval_menu, QStringLiteral("Text Approval"), optional);
    text_approval_menu->addSeparator();
    add(text_approval_menu, QStringLiteral("Text Approval (edit approved mode)"), optional);
    add(text_approval_menu, QStringLiteral("Text Approval (edit ignored mode)"), optional);
    add(text_approval_menu, QStringLiteral("Unapprove Text Containing"), optional);
    add(text_approval_menu,
        QStringLiteral("Text Approval (edit rejected without previous approved text mode)"), optional);
    audio_menu = add_menu(tasks_menu, QStringLiteral("Audio Tasks"), optional);
    add(audio_menu, QStringLiteral("Import Tracker Data"), optional);
    add(audio_menu, QStringLiteral("Script Export"), optional);
    add(tasks_menu, QStringLiteral("Localisation"), optional);
    add(tasks_menu, QStringLiteral("Script Form"), optional);
    add(tasks_menu, QStringLiteral("Subtitle Form"), optional);
    add(tasks_menu, QStringLiteral("Identify Old UI Text"), optional);
    tasks_menu->addSeparator();
    add(tasks_menu, QStringLiteral("Fetch Encyclopedia"), optional);
    tasks_menu->addSeparator();
    add(tasks_menu, QStringLiteral("&Apply Commands from File"));
    add(tasks_menu, QStringLiteral("&Apply Commands from File (Advanced)"), optional);
    tasks_menu->addSeparator();
    add(tasks_menu, QStringLiteral("Duplicate Starting Position"), optional);
    add(tasks_menu, QStringLiteral("Copy Selected Starting Position"), optional);

    options_menu = add_menu(nullptr, QStringLiteral("&Options"), false);
    add(options_menu, QStringLiteral("&Options"));

    help_menu = add_menu(nullptr, QStringLiteral("&Help"), optional);
    add(help_menu, QStringLiteral("Manual"), optional);
    help_menu->addSeparator();
    add(help_menu, QStringLiteral("&About"), optional);

    // Commands that belong to no menu.
    for (const char* text :
         {"&Recent Connections", "&Edit Data", "Edit &Structure", "&Create", "&Delete", "Export &Tables",
          "Export &Single Table", "Cobalt Codebase: &Edit Table", "&Check for Table Changes",
          "Lock Edited Tables in Perforce", "Export &Campaign XML", "Resolve conflicting XMLs",
          "Reconvert changed tables to binaries", "Export Localisation (to send to translators)"})
        add(nullptr, QString::fromLatin1(text));

    status_dock = new QDockWidget(QStringLiteral("Status Bar"), &window);
    status_dock->setObjectName(QStringLiteral("statusDock"));
    status_dock->setAllowedAreas(Qt::BottomDockWidgetArea);
    status_dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    status_bar = new QStatusBar(status_dock);
    status_bar->setObjectName(QStringLiteral("statusBar"));
    status_bar->setSizeGripEnabled(true);
    status_list = new QListWidget(status_bar);
    status_list->setObjectName(QStringLiteral("statusList"));
    progress_bar = new QProgressBar(status_bar);
    progress_bar->setObjectName(QStringLiteral("progressBar"));
    progress_bar->setOrientation(Qt::Vertical);
    status_dock->setWidget(status_bar);
    window.addDockWidget(Qt::BottomDockWidgetArea, status_dock);
}
