#pragma once

#include "find_and_replace_dialog.h"
#include "veld_pending_changes_form.h"
#include "veld_table_cell_edits.h"
#include "veld_table_data_editor_form.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"
#include "veld_table_search.h"

#include <QDialog>
#include <QList>
#include <QModelIndex>
#include <QPointer>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>

class CSV_TABLE_READER;
class KOR_FIELD_SCHEMA;
class KOR_TABLE_SCHEMA;
class QAction;
class QHeaderView;
class QLineEdit;
class QMenu;
class QPushButton;
class QSignalMapper;
class QWidgetAction;
class VELD_DATA;
class VELD_FROZEN_COLUMNS_TABLE;
class VELD_RegexFilterWidget;
class VELD_TABLE_DATA_VIEW_DELEGATE;
class VELD_WINDOW_OPENER;

// The window in which a user reads and changes one table: the model with its
// pending edits, the sort and filter proxy, the cell delegate and the
// frozen-column view, with the commands for records, lookups, layouts and
// filters. It remembers each table's column layout and asks before closing
// with unapplied work.
//
// Made by the main window (parent = the main window, which then gives the
// schema editor and the transactionApplied relay) or by tools that embed a
// read-only viewer. open() must succeed before the window is shown.
class VELD_TABLE_DATA_EDITOR : public QDialog, public VELD_PENDING_CHANGES_FORM
{
    Q_OBJECT

public:
    VELD_TABLE_DATA_EDITOR(const QString& table_key, VELD_DATA* session, QWidget* parent, bool read_only,
                           bool check_box_row_header = false);
    ~VELD_TABLE_DATA_EDITOR() override;

    static QString form_name();

    // Loads the table and sets the window up; false with the reason in error.
    bool open(QString& error);

    bool has_pending_changes() const override;
    void skip_save_question() override;

    const QString& table_key() const { return m_table_key; }
    bool is_read_only() const { return m_read_only; }
    VELD_TABLE_DATA_VIEW_MODEL& model() { return m_model; }
    VELD_TABLE_DATA_VIEW_SORT_MODEL& proxy() { return m_proxy; }
    VELD_FROZEN_COLUMNS_TABLE* view() const { return m_view; }
    VELD_TABLE_DATA_VIEW_DELEGATE* delegate() const { return m_delegate; }
    const VELD_TABLE_DATA_EDITOR_FORM& form() const { return m_ui; }
    const QList<VELD_RegexFilterWidget*>& filter_widgets() const { return m_filter_widgets; }
    const QList<VELD_RegexFilterWidget*>& dropdown_filter_widgets() const
    {
        return m_dropdown_filter_widgets;
    }
    bool context_menu_active() const { return m_context_menu_active; }
    QWidget* arithmetic_widget() const { return m_arithmetic_widget; }
    QAction* see_references_action() const { return m_see_references_action; }
    QMenu* context_menu() const { return m_context_menu; }
    // Null until the first Find or Replace key.
    FIND_AND_REPLACE_DIALOG* find_dialog() const { return m_find_dialog; }
    VELD_TABLE_CELL_EDITS& cell_edits() { return *m_cell_edits; }

    // Walks the rows of one column from the current cell (or the top) in the
    // direction (0 up, 1 down; 2 and 3 walk up and down as well), wrapping at
    // both ends, for a cell containing `text` (ignoring case); the match
    // becomes the current cell. `underlying` tests edit values instead of the
    // display texts. A failed search says so in a box titled "Find".
    bool search_in_column(const QString& text, const QString& field, int direction, bool underlying);

    // Opens the find dialog (made on first use) in a mode; a read-only
    // window only finds.
    void show_find_dialog(FIND_AND_REPLACE_DIALOG::MODE mode);

signals:
    void statusUpdate(QString status);
    void modifiedFilterUpdated();

public slots:
    void refreshColours();
    void handle_multi_cell_editing(const QString& value);
    void handle_multi_cell_arithmetic(double value, std::function<double(double, double)> custom_operator);
    void handle_multi_cell_arithmetic(double value);
    void showContextMenu(const QPoint& position);
    void onArithmeticCellEditMenuRequest(int operation);
    void onCellReferencesMenuRequest();
    void focus_on_row_in_table(const QString& target_table, const QString& key_text, bool read_only);
    void connectionEstablished();
    void sortByChanged(const QString& sortBy);
    void filterByChanged(const QString& filterBy);
    void displayChanged(const QString& display);
    void dropdownDisplayChanged(const QString& display);
    void statusUpdateProxy(QString text);
    void changedFlagUpdate(bool changed);
    void onRefresh();
    void onReset();
    void onDataImport();
    void onShowSchema();
    void onApply();
    void onApplyAndClose();
    QString get_selected_key();
    bool refresh_model(bool keep_editor_data = false);
    void onAddRecord();
    void onRemoveRecords();
    void onSearchNextStringInstance(const QString& search_text, const QString& search_field,
                                    int search_direction, bool search_underlying);
    void onReplaceCurrentOrNext(const QString& search_string, const QString& replace_string,
                                const QString& search_column, int search_direction, bool search_underlying);
    void onReplaceAll(const QString& search_string, const QString& replace_string,
                      const QString& search_column, int search_direction, bool search_underlying);
    void update_field_descrption(int column_index);
    void onTableEditorClicked(const QModelIndex& index);
    void addFilterWidget();
    void removeFilterWidget(VELD_RegexFilterWidget* widget);
    void addComboFilterWidget();
    void removeComboFilterWidget(VELD_RegexFilterWidget* widget);
    void recordModificationFilterEnabledChanged(int enabled_state);
    void modifiedTodayButtonPressed();
    void modifiedBeforeDateTimeChanged(const QDateTime& newDate);
    void modifiedAfterDateTimeChanged(const QDateTime& newDate);
    void showOldRecordsChanged(int enabledState);
    void saveModificationDates();
    void restoreModificationDates();
    void saveTableLayout();
    void restoreTableLayout();
    void onFilterChanged();
    void refreshView();
    void save_cursor_position();
    void restore_cursor_position();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    // The views would take the copy key (and others) for themselves.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connect_form();
    void build_context_menu();
    void update_context_menu_state();
    void show_counts();
    void attach_views();
    void detach_views();
    void follow_relationship(const QModelIndex& index);
    // The terms of a search, with the dialog's "Case Sensitive" and "In
    // Selection" when it exists.
    VELD_TABLE_SEARCH::TERMS search_terms(const QString& text, const QString& field, int direction,
                                          bool underlying) const;
    void remember_terms(const QString& text, const QString& field, bool underlying);
    void import_csv_rows(const CSV_TABLE_READER& reader);
    VELD_TABLE_DATA_EDITOR* open_editor_of(const QString& table, bool read_only, QString& error);
    const KOR_FIELD_SCHEMA* field_of_current_cell() const;

    QList<VELD_RegexFilterWidget*> m_filter_widgets;
    QList<VELD_RegexFilterWidget*> m_dropdown_filter_widgets;
    QHeaderView* m_row_header = nullptr;
    VELD_TABLE_DATA_VIEW_DELEGATE* m_delegate = nullptr;
    VELD_TABLE_DATA_VIEW_SORT_MODEL m_proxy;
    VELD_TABLE_DATA_VIEW_MODEL m_model;
    VELD_DATA* m_session;
    const KOR_TABLE_SCHEMA* m_table_schema = nullptr;
    QWidget* m_main_window = nullptr;
    VELD_TABLE_DATA_EDITOR_FORM m_ui;
    QString m_table_key;
    bool m_closing_after_apply = false;
    VELD_FROZEN_COLUMNS_TABLE* m_view = nullptr;
    QPointer<FIND_AND_REPLACE_DIALOG> m_find_dialog;
    QString m_search_text;
    QString m_search_field;
    QString m_replace_text;
    bool m_search_underlying = false;
    bool m_read_only;
    QString m_saved_cursor_key;
    QString m_form_style_sheet;
    QMenu* m_context_menu = nullptr;
    bool m_context_menu_active = false;
    QSignalMapper* m_arithmetic_mapper = nullptr;
    std::function<double(double, double)> m_add_operator;
    std::function<double(double, double)> m_multiply_operator;
    QWidget* m_arithmetic_widget = nullptr;
    QWidgetAction* m_arithmetic_action = nullptr;
    QLineEdit* m_arithmetic_line_edit = nullptr;
    QPushButton* m_add_button = nullptr;
    QPushButton* m_multiply_button = nullptr;
    QAction* m_see_references_action = nullptr;

    bool m_check_box_row_header;
    bool m_skip_save_question = false;
    bool m_opened = false;
    // Made with the view, which they work on.
    std::unique_ptr<VELD_TABLE_SEARCH> m_search;
    std::unique_ptr<VELD_TABLE_CELL_EDITS> m_cell_edits;
};
