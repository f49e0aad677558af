#include "veld_main_window.h"

#include "about_dialog.h"
#include "kor_xml_query_interface.h"
#include "options_dialog.h"
#include "prompt.h"
#include "quill_host_options.h"
#include "quill_icons.h"
#include "tools_metrics.h"
#include "veld_connection.h"
#include "veld_data.h"
#include "veld_form_type.h"
#include "veld_merge_logs.h"
#include "veld_options.h"
#include "veld_table_data_editor_window.h"
#include "veld_table_launcher.h"
#include "veld_window_registry.h"

#include <QtConcurrent/QtConcurrent>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>
#include <QtCore/QTimer>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QStatusBar>

namespace
{
const char* const TITLE = "ORBIN - Database Visual Editor";

// The wait cursor for the length of a command, restored on every way out.
class WAIT_CURSOR
{
public:
    WAIT_CURSOR() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WAIT_CURSOR() { QApplication::restoreOverrideCursor(); }
    WAIT_CURSOR(const WAIT_CURSOR&) = delete;
    WAIT_CURSOR& operator=(const WAIT_CURSOR&) = delete;
};

struct WIRING
{
    const char* text;
    const char* signal;
    const char* slot;
};

// The commands this configuration offers, and what they run.
const WIRING DEFAULT_COMMANDS[] = {
    {"&Connect", SIGNAL(triggered(bool)), SLOT(connectDialogOpen(bool))},
    {"&Disconnect", SIGNAL(triggered()), SLOT(disconnectDatabase())},
    {"&Table Launcher", SIGNAL(triggered(bool)), SLOT(tableLauncherOpen(bool))},
    {"Display &Local Changes", SIGNAL(triggered()), SLOT(displayLocalChanges())},
    {"Manual", SIGNAL(triggered()), SLOT(openHelp())},
    {"Global search", SIGNAL(triggered()), SLOT(globalSearchOpen())},
    {"&Options", SIGNAL(triggered()), SLOT(displayOptions())},
    {"&Apply Commands from File", SIGNAL(triggered()), SLOT(applyCommandsFromFile())},
    {"&Apply Commands from File (Advanced)", SIGNAL(triggered()), SLOT(applyCommandsFromFileAdvanced())},
    {"&Export Changes to Binary", SIGNAL(triggered()), SLOT(exportChangedToBinary())},
    {"&Export Single Table(s)", SIGNAL(triggered()), SLOT(exportSingleTables())},
    {"Simple SQL Query", SIGNAL(triggered()), SLOT(displaySimpleSQLQuery())},
};

// The full configuration adds every other command of the menus, each to the
// slot of the same meaning.
const WIRING FULL_COMMANDS[] = {
    {"&Revert Changes", SIGNAL(triggered()), SLOT(revertDBChanges())},
    {"Revert Exported Changes", SIGNAL(triggered()), SLOT(revertExportedChanges())},
    {"Shelve/Unshelve Local Changes", SIGNAL(triggered()), SLOT(openShelveUnshelve())},
    {"&Merge Current DB", SIGNAL(triggered()), SLOT(mergeCurrentDB())},
    {"Submit Changes &with Data", SIGNAL(triggered()), SLOT(submitChangesWithData())},
    {"Submit Schema Change Request", SIGNAL(triggered()), SLOT(submitSchemaChanges())},
    {"&Query Launcher", SIGNAL(triggered(bool)), SLOT(queryLauncherOpen(bool))},
    {"&Form Launcher", SIGNAL(triggered(bool)), SLOT(formLauncherOpen(bool))},
    {"&Database Differences", SIGNAL(triggered()), SLOT(diffDatabases())},
    {"&Process Campaign", SIGNAL(triggered()), SLOT(exportCampaignXML())},
    {"Connect &Without Merge", SIGNAL(triggered()), SLOT(connectWithoutMerge())},
    {"&Merge and Lock for Checkin", SIGNAL(triggered()), SLOT(mergeDatabasesForCheckin())},
    {"&Submit Changes", SIGNAL(triggered()), SLOT(submitChanges())},
    {"New Request", SIGNAL(triggered()), SLOT(addSchemaChangesRequest())},
    {"Show Requests", SIGNAL(triggered()), SLOT(showRequests())},
    {"Add New Table", SIGNAL(triggered()), SLOT(addTableSchema())},
    {"Edit Table Schema", SIGNAL(triggered()), SLOT(editTableSchema())},
    {"Remove Table Schema", SIGNAL(triggered()), SLOT(removeTableSchema())},
    {"Display &schema changes", SIGNAL(triggered()), SLOT(displayLocalSchemaChanges())},
    {"Cobalt Codebase: &Add Table", SIGNAL(triggered()), SLOT(generateCode())},
    {"Refresh unique ID lookup table", SIGNAL(triggered()), SLOT(refreshUniqueIDLookups())},
    {"Update all records with uuids", SIGNAL(triggered()), SLOT(updateAllRecordsWithUuids())},
    {"Update all schema fields with uuids", SIGNAL(triggered()), SLOT(updateAllSchemaFieldsWithUuids())},
    {"Text Approval", SIGNAL(triggered()), SLOT(textApprovalOpen())},
    {"Text Approval (edit approved mode)", SIGNAL(triggered()), SLOT(textApprovalEditApproved())},
    {"Text Approval (edit ignored mode)", SIGNAL(triggered()), SLOT(textApprovalEditIgnored())},
    {"Unapprove Text Containing", SIGNAL(triggered()), SLOT(unapproveTextOpen())},
    {"Text Approval (edit rejected without previous approved text mode)", SIGNAL(triggered()),
     SLOT(textApprovalEditRejectedWithoutPreviousApproval())},
    {"Import Tracker Data", SIGNAL(triggered()), SLOT(updateTrackerDataFormOpen())},
    {"Script Export", SIGNAL(triggered()), SLOT(scriptExportFormOpen())},
    {"Localisation", SIGNAL(triggered()), SLOT(localisationFormOpen())},
    {"Script Form", SIGNAL(triggered()), SLOT(scriptApprovalOpen())},
    {"Subtitle Form", SIGNAL(triggered()), SLOT(subtitleFormOpen())},
    {"Identify Old UI Text", SIGNAL(triggered()), SLOT(identifyOldText())},
    {"Fetch Encyclopedia", SIGNAL(triggered()), SLOT(fetchEncyclopedia())},
    {"Duplicate Starting Position", SIGNAL(triggered()), SLOT(duplicateStartPos())},
    {"Copy Selected Starting Position", SIGNAL(triggered()), SLOT(copySelectedStartPos())},
    {"&About", SIGNAL(triggered()), SLOT(displayAbout())},
};
} // namespace

// Outside any namespace, as Q_INIT_RESOURCE requires.
static void register_orbin_resources()
{
    Q_INIT_RESOURCE(orbin);
}

void VELD_MAIN_WINDOW::load_resources()
{
    // The icons are compiled into a static library, whose registration
    // would otherwise never run.
    static const bool loaded = (register_orbin_resources(), true);
    Q_UNUSED(loaded);
}

VELD_MAIN_WINDOW::VELD_MAIN_WINDOW(VELD_DATA* session, QWidget* parent, Qt::WindowFlags flags)
    : QMainWindow(parent, flags), m_session(session)
{
    TOOLS_METRICS::tool_started(QStringLiteral("Orbin"));
    load_resources();
    m_ui.setup(*this);
    setWindowIcon(QUILL_ICONS::create_icon(QPixmap(QStringLiteral(":/icons/main"))));
    m_ui.mdi_area->setOption(QMdiArea::DontMaximizeSubWindowOnActivation);
    if (m_session)
        connect(m_session, SIGNAL(statusUpdate(QString)), this, SLOT(statusbarUpdate(QString)));

    // Old merge logs go on a worker; nothing waits for it and it shares
    // nothing with the window.
    const QString merge_logs = VELD_MERGE_LOGS::folder();
    QtConcurrent::run(QThreadPool::globalInstance(), [merge_logs] { VELD_MERGE_LOGS::remove(merge_logs); });

    build_status_widgets();
    if (m_session && m_session->is_connected())
        statusbarUpdate(QStringLiteral("The database is already connected!"));
    configure_actions();
    if (m_session)
    {
        connect(m_session, SIGNAL(maxProgressChanged(int)), this, SLOT(maxProgressUpdate(int)));
        connect(m_session, SIGNAL(progressAdded(int)), this, SLOT(addProgress(int)));
        connect(m_session, &VELD_DATA::requestModeChanged, this, &VELD_MAIN_WINDOW::updateVELDMenu);
    }
    if (m_requests_enabled)
        connect(this, SIGNAL(connectionEstablished()), this, SLOT(checkRequests()));
    VELD_WINDOW_REGISTRY::instance().set_mdi_area(m_ui.mdi_area);
    QTimer::singleShot(200, this, SLOT(autoConnect()));
    refreshColours();
}

VELD_MAIN_WINDOW::~VELD_MAIN_WINDOW()
{
    TOOLS_METRICS::tool_finished(QStringLiteral("Orbin"));
}

void VELD_MAIN_WINDOW::build_status_widgets()
{
    m_ui.status_bar->addWidget(m_ui.status_list, 4);
    m_ui.status_bar->addWidget(m_ui.progress_bar, 1);
    m_ui.progress_bar->hide();
    connect(m_ui.status_dock, SIGNAL(topLevelChanged(bool)), this, SLOT(resizeDock(bool)));
}

void VELD_MAIN_WINDOW::configure_actions()
{
    const bool full = QUILL_HOST_OPTIONS::full_configuration();
    for (QAction* action : m_ui.optional_actions())
        action->setVisible(full);

    for (const WIRING& wire : DEFAULT_COMMANDS)
        connect(m_ui.action(QString::fromLatin1(wire.text)), wire.signal, this, wire.slot);
    connect(m_ui.action(QStringLiteral("&Fill Area")), SIGNAL(triggered()), m_ui.mdi_area,
            SLOT(tileSubWindows()));
    connect(m_ui.action(QStringLiteral("&Cascade")), SIGNAL(triggered()), m_ui.mdi_area,
            SLOT(cascadeSubWindows()));
    // "Resolve conflicting XMLs" and "Reconvert changed tables to binaries"
    // were meant for resolve_conflicting_xmls() and reconvert_changed_tables(),
    // which were never written: they stay unconnected and do nothing.

    if (full)
        connect_full_configuration();
}

void VELD_MAIN_WINDOW::connect_full_configuration()
{
    for (const WIRING& wire : FULL_COMMANDS)
        connect(m_ui.action(QString::fromLatin1(wire.text)), wire.signal, this, wire.slot);
}

QStringList VELD_MAIN_WINDOW::status_lines() const
{
    QStringList lines;
    for (int row = 0; row < m_ui.status_list->count(); ++row)
        lines << m_ui.status_list->item(row)->text();
    return lines;
}

QMdiSubWindow* VELD_MAIN_WINDOW::add_form(QWidget* window, const QString& name, int type)
{
    QMdiSubWindow* sub_window = m_ui.mdi_area->addSubWindow(window);
    sub_window->setAttribute(Qt::WA_DeleteOnClose);
    sub_window->show();
    QString error;
    // A form that could not be registered stays open; the user sees why.
    if (!VELD_WINDOW_REGISTRY::instance().register_form(error, name, type, sub_window, false, true))
        statusbarUpdate(error);
    if (window->metaObject()->indexOfSignal("statusUpdate(QString)") >= 0)
        connect(window, SIGNAL(statusUpdate(QString)), this, SLOT(statusbarUpdate(QString)));
    return sub_window;
}

void VELD_MAIN_WINDOW::not_available(const QString& what)
{
    statusbarUpdate(what + QStringLiteral(" is not available yet"));
}

// --- VELD_WINDOW_OPENER

QMdiSubWindow* VELD_MAIN_WINDOW::open_table_data_editor(const QString& table_key, QString& error, bool read_only)
{
    return VELD_TABLE_DATA_EDITOR_WINDOW::open(m_ui.mdi_area, m_session, this, table_key, read_only, error);
}

QMdiSubWindow* VELD_MAIN_WINDOW::open_table_schema_editor(const QString&, QString& error, bool)
{
    error = QStringLiteral("The schema editor is not available yet");
    return nullptr;
}

bool VELD_MAIN_WINDOW::close_forms_for_disconnect()
{
    VELD_WINDOW_REGISTRY::instance().close_all_forms(false);
    // Windows that never registered hold the same pointers.
    m_ui.mdi_area->closeAllSubWindows();
    for (QMdiSubWindow* window : m_ui.mdi_area->subWindowList())
    {
        if (!window->isHidden())
            return false;
    }
    return true;
}

// --- Connecting and disconnecting

bool VELD_MAIN_WINDOW::ask_to_close_forms()
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (!registry.any_forms())
        return true;
    if (prompt::question(this, QStringLiteral("Forms will be closed"),
                         QStringLiteral("All forms will be closed, continue?"),
                         QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::No)
        return false;
    registry.close_all_forms(false);
    return true;
}

void VELD_MAIN_WINDOW::connectDialogOpen(bool)
{
    if (m_session->is_connected())
    {
        statusbarUpdate(QStringLiteral("The database is already connected"));
        return;
    }
    if (!ask_to_close_forms())
        return;
    if (QUILL_HOST_OPTIONS::full_configuration())
        open_connection_dialog();
    else
        autoConnect();
}

void VELD_MAIN_WINDOW::open_connection_dialog()
{
    VELD_CONNECTION dialog(m_session, this);
    dialog.show_mirrors();
    connect(&dialog, SIGNAL(statusUpdate(QString)), this, SLOT(statusbarUpdate(QString)));
    connectDialogClosed(prompt::exec(dialog));
}

void VELD_MAIN_WINDOW::connectDialogClosed(int)
{
    if (m_session->is_connected())
        databaseConnected();
}

void VELD_MAIN_WINDOW::databaseConnected()
{
    emit connectionEstablished();
}

void VELD_MAIN_WINDOW::disconnectedProxy()
{
    emit disconnected();
}

void VELD_MAIN_WINDOW::connectWithoutMerge()
{
    if (m_session->is_connected())
    {
        statusbarUpdate(QStringLiteral("The database is already connected"));
        return;
    }
    if (!ask_to_close_forms())
        return;
    connect_remembering_and_report();
}

void VELD_MAIN_WINDOW::connect_remembering_and_report()
{
    WAIT_CURSOR wait;
    QString error;
    const QString path = m_session->connect_path();
    if (m_session->connect_remembering(error, path))
    {
        statusbarUpdate(QStringLiteral("Connection Established! - DB path is '") + path +
                        QStringLiteral("'"));
        emit connectionEstablished();
    }
    else
    {
        prompt::warning(this, QStringLiteral("Orbin"), QStringLiteral("Unable to connect: ") + error);
    }
}

void VELD_MAIN_WINDOW::autoConnect()
{
    if (m_session->is_connected())
        return;
    QSet<QString> changed_tables;
    {
        WAIT_CURSOR wait;
        KOR_XML_QUERY_INTERFACE probe(nullptr, QString(), false, false);
        probe.get_changed_tables(changed_tables, m_session->connect_path());
    }
    // Both ways are local; the remembered one lets a later command reconnect
    // by itself when local work is at stake.
    if (!changed_tables.isEmpty())
    {
        connect_remembering_and_report();
        return;
    }
    WAIT_CURSOR wait;
    QString error;
    const QString path = m_session->connect_path();
    if (m_session->connect_main(error, path, 0))
    {
        statusbarUpdate(QStringLiteral("Connection Established! - DB path is '") + path +
                        QStringLiteral("'"));
        emit connectionEstablished();
    }
    else
    {
        prompt::warning(this, QStringLiteral("Orbin"), QStringLiteral("Unable to connect: ") + error);
    }
}

void VELD_MAIN_WINDOW::disconnectDatabase()
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    bool go_on = true;
    if (registry.any_forms_except(VELD_FORM_TYPE::LAUNCHER))
    {
        go_on = prompt::question(this, QStringLiteral("Orbin"),
                                 QStringLiteral("Any unsaved changes will be lost, are you sure you wish to "
                                                "disconnect?\n(changes within forms save automatically)"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::No;
    }
    if (go_on && registry.any_unsaved_forms())
    {
        go_on = prompt::question(this, QStringLiteral("Orbin"),
                                 QStringLiteral("Are you absolutely sure you want to disconnect?\n"
                                                "(UNSAVED CHANGES WILL BE LOST!)"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::No;
    }
    if (go_on)
    {
        forceDisconnectDatabase();
        return;
    }
    // Request mode ends with every disconnect command, answered or not.
    m_session->set_request_mode(false);
}

void VELD_MAIN_WINDOW::forceDisconnectDatabase()
{
    VELD_WINDOW_REGISTRY::instance().close_all_forms(true);
    QString error;
    if (m_session->disconnect_all(error))
    {
        emit disconnected();
        statusbarUpdate(QStringLiteral("Database Disconnected!"));
    }
    else
    {
        statusbarUpdate(error);
    }
    m_session->set_request_mode(false);
}

// --- Windows of this issue

void VELD_MAIN_WINDOW::displayOptions()
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    // One preferences window: a second would store over the first.
    if (registry.is_form_open(OPTIONS_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG))
    {
        registry.raise_form(OPTIONS_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG);
        return;
    }
    auto* dialog = new OPTIONS_DIALOG(m_ui.mdi_area);
    add_form(dialog, OPTIONS_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG);
    connect(dialog, SIGNAL(refreshColours()), this, SLOT(refreshColours()));
}

void VELD_MAIN_WINDOW::displayAbout()
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (registry.is_form_open(ABOUT_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG))
    {
        registry.raise_form(ABOUT_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG);
        return;
    }
    add_form(new ABOUT_DIALOG(m_ui.mdi_area), ABOUT_DIALOG::form_name(), VELD_FORM_TYPE::DIALOG);
}

void VELD_MAIN_WINDOW::openHelp()
{
    WAIT_CURSOR wait;
}

void VELD_MAIN_WINDOW::refreshColours()
{
    m_ui.mdi_area->setBackground(QBrush(VELD_OPTIONS::window_background_colour()));
    emit refreshDialogColours();
    // Some child windows repaint their style sheets only on a resize.
    resize(width() + 2, height());
    resize(width() - 2, height());
}

void VELD_MAIN_WINDOW::resizeDock(bool floating)
{
    if (floating)
        m_ui.status_dock->resize(500, 200);
}

void VELD_MAIN_WINDOW::refreshAllTableListsProxy()
{
    emit refreshAllTableLists();
}

void VELD_MAIN_WINDOW::areFormsOpenBeforeTableReversion()
{
    const VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    emit formsOpenForTableRevert(registry.any_of_type(VELD_FORM_TYPE::FORM) ||
                                 registry.any_of_type(VELD_FORM_TYPE::TABLE_DATA_EDITOR));
}

void VELD_MAIN_WINDOW::updateVELDMenu(bool is_in_request_mode)
{
    setWindowTitle(is_in_request_mode
                       ? QStringLiteral("ORBIN - Database Visual Editor - Request Schema Changes")
                       : QString::fromLatin1(TITLE));
}

void VELD_MAIN_WINDOW::onSuppressErrors(bool suppress)
{
    m_session->set_suppress_errors(suppress);
}

void VELD_MAIN_WINDOW::updateAllRecordsWithUuids()
{
    m_session->update_all_records_with_uuids();
}

void VELD_MAIN_WINDOW::updateAllSchemaFieldsWithUuids()
{
    m_session->update_all_schema_fields_with_uuids();
}

void VELD_MAIN_WINDOW::refreshUniqueIDLookups()
{
    if (!m_session->reconnect_if_needed() || !m_session->query_interface())
    {
        statusbarUpdate(QStringLiteral("Connect to the database first"));
        return;
    }
    WAIT_CURSOR wait;
    m_session->query_interface()->refresh_unique_id_lookups_table();
}

// --- Status list and progress

void VELD_MAIN_WINDOW::statusbarUpdate(QString new_status)
{
    const QString line = VELD_STATUS_LOG::format_line(new_status);
    if (m_status_log.is_locked())
    {
        m_status_log.hold_back(line);
        return;
    }
    QListWidget* list = m_ui.status_list;
    auto* item = new QListWidgetItem(line, list);
    list->setCurrentItem(item);
    // More than one may go: an unlock adds what was held back untrimmed.
    while (list->count() > VELD_STATUS_LOG::MAX_LINES)
        delete list->takeItem(0);
    // Painted at once: lines must show while a command blocks the loop.
    list->repaint();
}

void VELD_MAIN_WINDOW::lockStatusBarUpdate()
{
    m_ui.status_list->setUpdatesEnabled(false);
    m_status_log.lock();
}

void VELD_MAIN_WINDOW::unlockStatusBarUpdate()
{
    QListWidget* list = m_ui.status_list;
    list->setUpdatesEnabled(true);
    const QStringList lines = m_status_log.unlock();
    if (lines.isEmpty())
        return;
    list->addItems(lines);
    list->setCurrentRow(list->count() - 1);
    list->repaint();
}

void VELD_MAIN_WINDOW::maxProgressUpdate(int max_progress)
{
    m_ui.progress_bar->show();
    m_ui.progress_bar->setRange(0, max_progress);
    m_ui.progress_bar->setValue(0);
}

void VELD_MAIN_WINDOW::addProgress(int progress)
{
    QProgressBar* bar = m_ui.progress_bar;
    bar->setValue(bar->value() + progress);
    // Not cancelled by new progress: the bar goes this long after it filled.
    if (bar->value() >= bar->maximum())
        QTimer::singleShot(m_progress_hide_delay, this, SLOT(hideProgress()));
}

void VELD_MAIN_WINDOW::hideProgress()
{
    m_ui.progress_bar->hide();
}

// --- The table launcher and editors

void VELD_MAIN_WINDOW::tableLauncherOpen(bool)
{
    open_table_launcher(0);
}

void VELD_MAIN_WINDOW::editTableSchema()
{
    open_table_launcher(1);
}

void VELD_MAIN_WINDOW::removeTableSchema()
{
    open_table_launcher(2);
}

void VELD_MAIN_WINDOW::open_table_launcher(int mode)
{
    static const int types[] = {VELD_FORM_TYPE::LAUNCHER, VELD_FORM_TYPE::TABLE_LAUNCHER_SCHEMA_MODE,
                                VELD_FORM_TYPE::TABLE_LAUNCHER_REMOVAL_MODE};
    if (!m_session->reconnect_if_needed())
    {
        statusbarUpdate(QStringLiteral("Connect to the database first"));
        return;
    }
    if (VELD_WINDOW_REGISTRY::instance().is_form_open(VELD_TABLE_LAUNCHER::form_name(), types[mode]))
    {
        statusbarUpdate(QStringLiteral("The table launcher form is already open"));
        return;
    }
    auto* launcher = new VELD_TABLE_LAUNCHER(m_session, this, mode);
    add_form(launcher, VELD_TABLE_LAUNCHER::form_name(), launcher->registry_kind());
    connect(this, SIGNAL(refreshDialogColours()), launcher, SLOT(refreshColours()));
    connect(this, SIGNAL(connectionEstablished()), launcher, SLOT(connectionEstablished()));
    connect(launcher, SIGNAL(refresh_all_table_lists()), this, SLOT(refreshAllTableListsProxy()));
    connect(this, SIGNAL(refreshAllTableLists()), launcher, SLOT(refresh_table_list()));
}

// --- Commands whose windows come later

void VELD_MAIN_WINDOW::addSchemaChangesRequest()
{
    not_available(QStringLiteral("The schema change request"));
}

void VELD_MAIN_WINDOW::showRequests()
{
    not_available(QStringLiteral("The requests manager"));
}

void VELD_MAIN_WINDOW::addTableSchema()
{
    not_available(QStringLiteral("The schema editor"));
}

void VELD_MAIN_WINDOW::generateCode()
{
    not_available(QStringLiteral("Code generation"));
}

void VELD_MAIN_WINDOW::generateCode(const QStringList&)
{
    not_available(QStringLiteral("Code generation"));
}

void VELD_MAIN_WINDOW::updateCodeFromCommandFile(const QFileInfo&)
{
    not_available(QStringLiteral("Updating code from a command file"));
}

void VELD_MAIN_WINDOW::updateCodeFromCommandFile(const QFileInfo&, const KOR_XML_QUERY_INTERFACE&)
{
    not_available(QStringLiteral("Updating code from a command file"));
}

void VELD_MAIN_WINDOW::removeBinariesParsingCommandFile(const QFileInfo&, const KOR_XML_QUERY_INTERFACE&)
{
    not_available(QStringLiteral("Removing binaries by a command file"));
}

void VELD_MAIN_WINDOW::mergeDatabasesForCheckin()
{
    not_available(QStringLiteral("Merging for check-in"));
}

void VELD_MAIN_WINDOW::queryLauncherOpen(bool)
{
    not_available(QStringLiteral("The query launcher"));
}

void VELD_MAIN_WINDOW::formLauncherOpen(bool)
{
    not_available(QStringLiteral("The form launcher"));
}

void VELD_MAIN_WINDOW::exportChangedToBinary()
{
    not_available(QStringLiteral("Exporting changes to binary"));
}

void VELD_MAIN_WINDOW::exportChangedToBinary(const QString&, const QString&)
{
    not_available(QStringLiteral("Exporting changes to binary"));
}

void VELD_MAIN_WINDOW::exportCampaignXML()
{
    not_available(QStringLiteral("Campaign export"));
}

void VELD_MAIN_WINDOW::displayLocalChanges()
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (registry.is_form_open(QStringLiteral("LOCAL_CHANGES_FORM"), VELD_FORM_TYPE::DIALOG))
    {
        statusbarUpdate(QStringLiteral("The local changes dialog is already open"));
        return;
    }
    if (!m_session->reconnect_if_needed() || !m_session->query_interface())
    {
        statusbarUpdate(
            QStringLiteral("Please connect to the database before displaying your local changes"));
        return;
    }
    LOCAL_DATA_CHANGES_DIALOG* dialog =
        m_session->query_interface()->create_local_data_changes_dialog(this, &registry);
    if (!dialog)
    {
        not_available(QStringLiteral("The local changes dialog"));
        return;
    }
    // The library's dialog registers and shows itself.
}

void VELD_MAIN_WINDOW::displayLocalSchemaChanges()
{
    not_available(QStringLiteral("The local schema changes dialog"));
}

void VELD_MAIN_WINDOW::exportSingleTables()
{
    not_available(QStringLiteral("The export tables dialog"));
}

void VELD_MAIN_WINDOW::displaySimpleSQLQuery()
{
    not_available(QStringLiteral("The SQL query input"));
}

void VELD_MAIN_WINDOW::revertDBChanges()
{
    not_available(QStringLiteral("Reverting changes"));
}

void VELD_MAIN_WINDOW::revertExportedChanges()
{
    not_available(QStringLiteral("Reverting exported changes"));
}

void VELD_MAIN_WINDOW::submitChanges()
{
    not_available(QStringLiteral("The submit dialog"));
}

bool VELD_MAIN_WINDOW::mergeCurrentDB(bool)
{
    not_available(QStringLiteral("Merging the current database"));
    return false;
}

void VELD_MAIN_WINDOW::submitChangesWithData()
{
    not_available(QStringLiteral("The submit dialog"));
}

void VELD_MAIN_WINDOW::submitSchemaChanges()
{
    not_available(QStringLiteral("The schema change request"));
}

void VELD_MAIN_WINDOW::checkRequests()
{
    not_available(QStringLiteral("Checking requests"));
}

void VELD_MAIN_WINDOW::exportLocalisation()
{
    not_available(QStringLiteral("Exporting localisation"));
}

void VELD_MAIN_WINDOW::globalSearchOpen()
{
    not_available(QStringLiteral("The global search"));
}

void VELD_MAIN_WINDOW::textApprovalOpen()
{
    not_available(QStringLiteral("Text approval"));
}

void VELD_MAIN_WINDOW::textApprovalEditApproved()
{
    not_available(QStringLiteral("Text approval"));
}

void VELD_MAIN_WINDOW::textApprovalEditIgnored()
{
    not_available(QStringLiteral("Text approval"));
}

void VELD_MAIN_WINDOW::textApprovalEditRejectedWithoutPreviousApproval()
{
    not_available(QStringLiteral("Text approval"));
}

void VELD_MAIN_WINDOW::unapproveTextOpen()
{
    not_available(QStringLiteral("Unapproving text"));
}

void VELD_MAIN_WINDOW::scriptApprovalOpen()
{
    not_available(QStringLiteral("The script form"));
}

void VELD_MAIN_WINDOW::subtitleFormOpen()
{
    not_available(QStringLiteral("The subtitle form"));
}

void VELD_MAIN_WINDOW::localisationFormOpen()
{
    not_available(QStringLiteral("Localisation"));
}

void VELD_MAIN_WINDOW::scriptExportFormOpen()
{
    not_available(QStringLiteral("Script export"));
}

void VELD_MAIN_WINDOW::applyCommandsFromFile()
{
    not_available(QStringLiteral("Applying commands from a file"));
}

void VELD_MAIN_WINDOW::applyCommandsFromFileAdvanced()
{
    not_available(QStringLiteral("Applying commands from a file"));
}

void VELD_MAIN_WINDOW::applyCommandsFromFileAdvanced(const QString&)
{
    not_available(QStringLiteral("Applying commands from a file"));
}

void VELD_MAIN_WINDOW::fetchEncyclopedia()
{
    not_available(QStringLiteral("Fetching the encyclopedia"));
}

void VELD_MAIN_WINDOW::diffDatabases()
{
    not_available(QStringLiteral("The database differences"));
}

void VELD_MAIN_WINDOW::duplicateStartPos()
{
    not_available(QStringLiteral("Duplicating starting positions"));
}

void VELD_MAIN_WINDOW::copySelectedStartPos()
{
    not_available(QStringLiteral("Copying starting positions"));
}

void VELD_MAIN_WINDOW::identifyOldText()
{
    not_available(QStringLiteral("Identifying old text"));
}

void VELD_MAIN_WINDOW::openShelveUnshelve()
{
    not_available(QStringLiteral("Shelving"));
}

void VELD_MAIN_WINDOW::updateTrackerDataFormOpen()
{
    not_available(QStringLiteral("Importing tracker data"));
}
