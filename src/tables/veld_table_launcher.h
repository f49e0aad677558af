#pragma once

#include <QDialog>
#include <QString>

class QGridLayout;
class QLineEdit;
class QListView;
class TABLE_ITEM_DELEGATE;
class TABLE_LAUNCHER_MODEL;
class VELD_DATA;
class VELD_TABLE_LAUNCHER_SORT_MODEL;
class VELD_TABLE_PINNED_SORT_MODEL;
class VELD_WINDOW_OPENER;

// The window from which a user reaches a table: the pinned tables above, all
// others below with a text filter. One class serves three commands, told
// apart by the mode: open the data editor, open the schema editor, or remove
// the table.
//
// The main window places it in its MDI area and registers it under
// form_name() with registry_kind().
class VELD_TABLE_LAUNCHER : public QDialog
{
    Q_OBJECT

public:
    enum MODE : int
    {
        DATA_MODE = 0,
        SCHEMA_MODE = 1,
        REMOVAL_MODE = 2
    };

    // `main_window` gives the operations that open editors (VELD_WINDOW_OPENER);
    // it is also the parent until the MDI area takes the window.
    VELD_TABLE_LAUNCHER(VELD_DATA* session, QWidget* main_window, int mode);
    ~VELD_TABLE_LAUNCHER() override;

    // Every launcher registers under this name; the kind tells the modes apart.
    static QString form_name();
    int registry_kind() const;
    int mode() const { return m_mode; }

    QLineEdit* table_filter() const { return m_table_filter; }
    QListView* pinned_list() const { return m_pinned_tables_list; }
    QListView* table_list() const { return m_table_launcher; }
    TABLE_LAUNCHER_MODEL* source_model() const { return m_source_model; }
    VELD_TABLE_LAUNCHER_SORT_MODEL* list_proxy() const { return m_list_proxy; }
    VELD_TABLE_PINNED_SORT_MODEL* pinned_proxy() const { return m_pinned_proxy; }

    // Launches a table as a choice in the list does (also used by tests).
    void launch_table(const QString& key, bool read_only);

signals:
    void statusUpdate(QString status);
    void refresh_all_table_lists();

public slots:
    void refreshColours();
    void refreshColours(QListView* list);
    void refresh_table_list();
    void refresh_table_layout();
    void connectionEstablished();
    void tableLaunch(const QModelIndex& index);
    void filterChanged();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void remove_table(const QString& key);
    VELD_WINDOW_OPENER* opener() const;

    VELD_DATA* m_session;
    QWidget* m_main_window;
    QGridLayout* m_layout = nullptr;
    QLineEdit* m_table_filter = nullptr;
    QListView* m_pinned_tables_list = nullptr;
    QListView* m_table_launcher = nullptr;
    int m_mode;
    QString m_form_style_sheet;
    TABLE_ITEM_DELEGATE* m_list_delegate = nullptr;
    TABLE_ITEM_DELEGATE* m_pinned_delegate = nullptr;
    VELD_TABLE_LAUNCHER_SORT_MODEL* m_list_proxy = nullptr;
    VELD_TABLE_PINNED_SORT_MODEL* m_pinned_proxy = nullptr;
    TABLE_LAUNCHER_MODEL* m_source_model = nullptr;
};
