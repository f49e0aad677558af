#pragma once

#include "veld_main_window_ui.h"
#include "veld_status_log.h"
#include "veld_window_opener.h"

#include <QtCore/QStringList>
#include <QtWidgets/QMainWindow>

class QFileInfo;
class QMdiSubWindow;
class KOR_XML_QUERY_INTERFACE;
class VELD_DATA;

// The main window: an MDI area with every command of the editor in its
// menus, the status list (the program's one log) and the progress bar.
//
// It owns no data: it is given the session and hands it to every window it
// opens. Every window of the program is an MDI child opened by one of its
// slots, registered with the window registry, and speaks to the others
// through the signals here: statusUpdate(QString) to statusbarUpdate,
// refreshColours to refreshDialogColours, connectionEstablished and
// transactionApplied relayed to all.
//
// The default configuration offers a small set of commands and hides the
// rest; the full configuration (the host's switch) shows and connects every
// command.
class VELD_MAIN_WINDOW : public QMainWindow, public VELD_WINDOW_OPENER
{
    Q_OBJECT

public:
    VELD_MAIN_WINDOW(VELD_DATA* session, QWidget* parent = nullptr,
                     Qt::WindowFlags flags = Qt::WindowFlags());
    ~VELD_MAIN_WINDOW() override;

    VELD_DATA* session() const { return m_session; }
    // Makes the program's icons (":/icons/...") available; once is enough.
    static void load_resources();

    // VELD_WINDOW_OPENER
    QMdiSubWindow* open_table_data_editor(const QString& table_key, QString& error, bool read_only) override;
    QMdiSubWindow* open_table_schema_editor(const QString& table_key, QString& error,
                                            bool read_only) override;

    // Closes every window before the session disconnects under them (the
    // host asked); table editors ask about their unapplied edits. False when
    // a window stayed open.
    bool close_forms_for_disconnect();

    // For tests and the host: the widgets of the window.
    const VELD_MAIN_WINDOW_UI& ui() const { return m_ui; }
    QAction* action(const QString& text) const { return m_ui.action(text); }
    // The lines of the status list, oldest first.
    QStringList status_lines() const;
    // The delay after which a full progress bar hides; 1500 ms.
    void set_progress_hide_delay(int milliseconds) { m_progress_hide_delay = milliseconds; }

signals:
    void connectionEstablished();
    void disconnected();
    void refreshDialogColours();
    void refreshAllTableLists();
    void transactionApplied(const QStringList&);
    void formsOpenForTableRevert(bool);

public slots:
    void addSchemaChangesRequest();
    void showRequests();
    void updateVELDMenu(bool is_in_request_mode = false);
    void editTableSchema();
    void addTableSchema();
    void removeTableSchema();
    void generateCode();
    void generateCode(const QStringList& tables);
    void updateCodeFromCommandFile(const QFileInfo& file);
    void updateCodeFromCommandFile(const QFileInfo& file, const KOR_XML_QUERY_INTERFACE& query_interface);
    void removeBinariesParsingCommandFile(const QFileInfo& file,
                                          const KOR_XML_QUERY_INTERFACE& query_interface);
    void mergeDatabasesForCheckin();
    void connectDialogOpen(bool checked = false);
    void connectWithoutMerge();
    void connectDialogClosed(int result);
    void tableLauncherOpen(bool checked = false);
    void queryLauncherOpen(bool checked = false);
    void formLauncherOpen(bool checked = false);
    void disconnectDatabase();
    void forceDisconnectDatabase();
    void databaseConnected();
    void disconnectedProxy();
    void exportChangedToBinary();
    void exportChangedToBinary(const QString& path, const QString& raw_data_path);
    void exportCampaignXML();
    void displayLocalChanges();
    void displayLocalSchemaChanges();
    void exportSingleTables();
    void displaySimpleSQLQuery();
    void revertDBChanges();
    void revertExportedChanges();
    void submitChanges();
    bool mergeCurrentDB(bool silent = false);
    void submitChangesWithData();
    void submitSchemaChanges();
    void checkRequests();
    void displayAbout();
    void openHelp();
    void autoConnect();
    void exportLocalisation();
    void updateAllRecordsWithUuids();
    void updateAllSchemaFieldsWithUuids();
    void globalSearchOpen();
    void textApprovalOpen();
    void textApprovalEditApproved();
    void textApprovalEditIgnored();
    void textApprovalEditRejectedWithoutPreviousApproval();
    void refreshUniqueIDLookups();
    void scriptApprovalOpen();
    void subtitleFormOpen();
    void localisationFormOpen();
    void scriptExportFormOpen();
    void displayOptions();
    void refreshColours();
    void resizeDock(bool floating);
    void refreshAllTableListsProxy();
    void applyCommandsFromFile();
    void applyCommandsFromFileAdvanced();
    void applyCommandsFromFileAdvanced(const QString& path);
    void fetchEncyclopedia();
    void diffDatabases();
    void duplicateStartPos();
    void copySelectedStartPos();
    void identifyOldText();
    void openShelveUnshelve();
    void statusbarUpdate(QString new_status);
    void maxProgressUpdate(int max_progress);
    void lockStatusBarUpdate();
    void unlockStatusBarUpdate();
    void addProgress(int progress);
    void onSuppressErrors(bool suppress);
    void updateTrackerDataFormOpen();
    void hideProgress();
    void areFormsOpenBeforeTableReversion();

    // Reached only in the full configuration: the command of this name has
    // no slot of its own in the default one.
    void unapproveTextOpen();

private:
    void build_status_widgets();
    void configure_actions();
    void connect_full_configuration();
    bool ask_to_close_forms();
    void connect_remembering_and_report();
    void open_connection_dialog();
    // Opens the table launcher in a mode (0 data, 1 schema, 2 removal).
    void open_table_launcher(int mode);
    // Shows `window` as an MDI child registered under name and type, with its
    // statusUpdate(QString) going to the status list.
    QMdiSubWindow* add_form(QWidget* window, const QString& name, int type);
    void not_available(const QString& what);

    VELD_MAIN_WINDOW_UI m_ui;
    VELD_DATA* m_session = nullptr;
    // Handed to the request dialogs; nothing sets it.
    bool m_requests_enabled = false;
    VELD_STATUS_LOG m_status_log;
    int m_progress_hide_delay = 1500;
};
