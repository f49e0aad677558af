#include "veld_table_launcher.h"

#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "orbin_user.h"
#include "prompt.h"
#include "table_item_delegate.h"
#include "table_launcher_model.h"
#include "veld_data.h"
#include "veld_form_type.h"
#include "veld_options.h"
#include "veld_table_launcher_sort_model.h"
#include "veld_table_pinned_sort_model.h"
#include "veld_table_removal_hooks.h"
#include "veld_window_opener.h"
#include "veld_window_registry.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QSet>

namespace
{
// The launcher's wait cursor, back to the arrow on every way out.
class WAIT_CURSOR
{
public:
    explicit WAIT_CURSOR(QWidget* widget) : m_widget(widget) { m_widget->setCursor(Qt::WaitCursor); }
    ~WAIT_CURSOR() { m_widget->setCursor(Qt::ArrowCursor); }

private:
    QWidget* m_widget;
};

// Updates of a list are off while a table is removed, back on on every way out.
class UPDATES_OFF
{
public:
    explicit UPDATES_OFF(QWidget* widget) : m_widget(widget) { m_widget->setUpdatesEnabled(false); }
    ~UPDATES_OFF() { m_widget->setUpdatesEnabled(true); }

private:
    QWidget* m_widget;
};
} // namespace

VELD_TABLE_LAUNCHER::VELD_TABLE_LAUNCHER(VELD_DATA* session, QWidget* main_window, int mode)
    : QDialog(main_window), m_session(session), m_main_window(main_window), m_mode(mode)
{
    setObjectName(QStringLiteral("tableLauncherForm"));
    setWindowTitle(tr("Table Launcher"));
    resize(260, 480);

    m_layout = new QGridLayout(this);
    m_table_filter = new QLineEdit(this);
    m_table_filter->setObjectName(QStringLiteral("tableFilter"));
    m_table_filter->setPlaceholderText(QStringLiteral("<enter filter here>"));
    m_pinned_tables_list = new QListView(this);
    m_pinned_tables_list->setObjectName(QStringLiteral("pinnedTablesList"));
    m_table_launcher = new QListView(this);
    m_table_launcher->setObjectName(QStringLiteral("tableLauncher"));
    for (QListView* list : {m_pinned_tables_list, m_table_launcher})
    {
        list->setEditTriggers(QAbstractItemView::NoEditTriggers);
        list->setMouseTracking(true);
        list->viewport()->setAttribute(Qt::WA_Hover);
        list->setUniformItemSizes(true);
    }
    m_table_launcher->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pinned_tables_list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pinned_tables_list->setFixedHeight(0);
    m_layout->addWidget(m_pinned_tables_list, 0, 0);
    m_layout->addWidget(m_table_filter, 1, 0);
    m_layout->addWidget(m_table_launcher, 2, 0);
    m_form_style_sheet = m_table_launcher->styleSheet();

    m_source_model = new TABLE_LAUNCHER_MODEL(m_session, this);
    m_list_proxy = new VELD_TABLE_LAUNCHER_SORT_MODEL(this);
    m_pinned_proxy = new VELD_TABLE_PINNED_SORT_MODEL(this);

    connect(m_table_filter, &QLineEdit::textChanged, this, &VELD_TABLE_LAUNCHER::filterChanged);
    connect(m_table_launcher, &QAbstractItemView::doubleClicked, this, &VELD_TABLE_LAUNCHER::tableLaunch);
    connect(m_pinned_tables_list, &QAbstractItemView::doubleClicked, this, &VELD_TABLE_LAUNCHER::tableLaunch);

    connectionEstablished();
    refreshColours();
}

VELD_TABLE_LAUNCHER::~VELD_TABLE_LAUNCHER()
{
    QString error;
    if (!VELD_WINDOW_REGISTRY::instance().unregister_form(error, form_name(), registry_kind()))
        emit statusUpdate(error);
}

QString VELD_TABLE_LAUNCHER::form_name()
{
    return QStringLiteral("TABLE_DATA_EDITOR");
}

int VELD_TABLE_LAUNCHER::registry_kind() const
{
    switch (m_mode)
    {
    case SCHEMA_MODE:
        return VELD_FORM_TYPE::TABLE_LAUNCHER_SCHEMA_MODE;
    case REMOVAL_MODE:
        return VELD_FORM_TYPE::TABLE_LAUNCHER_REMOVAL_MODE;
    default:
        return VELD_FORM_TYPE::LAUNCHER;
    }
}

VELD_WINDOW_OPENER* VELD_TABLE_LAUNCHER::opener() const
{
    return dynamic_cast<VELD_WINDOW_OPENER*>(m_main_window);
}

void VELD_TABLE_LAUNCHER::refreshColours()
{
    refreshColours(m_table_launcher);
    refreshColours(m_pinned_tables_list);
}

void VELD_TABLE_LAUNCHER::refreshColours(QListView* list)
{
    list->setStyleSheet(m_form_style_sheet);
    if (VELD_OPTIONS::uses_custom_cell_style())
        list->setStyleSheet(VELD_OPTIONS::cell_stylesheet());
    list->update();
}

void VELD_TABLE_LAUNCHER::refresh_table_list()
{
    if (m_session && m_session->is_connected() && m_session->get_database_schema())
    {
        m_source_model->refresh();
        refresh_table_layout();
    }
}

void VELD_TABLE_LAUNCHER::refresh_table_layout()
{
    m_list_proxy->invalidate();
    m_pinned_proxy->invalidate();
    m_list_proxy->sort(0, Qt::AscendingOrder);
    m_pinned_proxy->sort(0, Qt::AscendingOrder);
    const int pinned = m_pinned_proxy->rowCount();
    m_pinned_tables_list->setFixedHeight(pinned > 0 ? pinned * 16 + 4 : 0);
}

void VELD_TABLE_LAUNCHER::connectionEstablished()
{
    if (m_mode == SCHEMA_MODE)
        setWindowTitle(tr("Table Schema Launcher"));
    else if (m_mode == REMOVAL_MODE)
        setWindowTitle(tr("Table Removal"));

    delete m_list_delegate;
    delete m_pinned_delegate;
    m_list_delegate = new TABLE_ITEM_DELEGATE(m_list_proxy, m_source_model, this);
    m_pinned_delegate = new TABLE_ITEM_DELEGATE(m_pinned_proxy, m_source_model, this);

    if (!m_session || !m_session->is_connected() || !m_session->get_database_schema())
        return;
    m_source_model->fill();
    m_list_proxy->setSourceModel(m_source_model);
    m_pinned_proxy->setSourceModel(m_source_model);
    m_table_launcher->setModel(m_list_proxy);
    m_pinned_tables_list->setModel(m_pinned_proxy);
    m_table_launcher->setAlternatingRowColors(true);
    m_pinned_tables_list->setAlternatingRowColors(true);
    m_table_launcher->setItemDelegate(m_list_delegate);
    m_pinned_tables_list->setItemDelegate(m_pinned_delegate);
    connect(m_list_delegate, &TABLE_ITEM_DELEGATE::pinned, this, &VELD_TABLE_LAUNCHER::refresh_table_layout);
    connect(m_pinned_delegate, &TABLE_ITEM_DELEGATE::pinned, this,
            &VELD_TABLE_LAUNCHER::refresh_table_layout);
    refresh_table_layout();
}

void VELD_TABLE_LAUNCHER::tableLaunch(const QModelIndex& index)
{
    launch_table(index.data(Qt::DisplayRole).toString(), false);
}

void VELD_TABLE_LAUNCHER::filterChanged()
{
    m_list_proxy->setFilterRegExp(m_table_filter->text());
    m_list_proxy->sort(0, Qt::AscendingOrder);
}

void VELD_TABLE_LAUNCHER::keyPressEvent(QKeyEvent* event)
{
    const QModelIndexList selected = m_table_launcher->selectionModel()
                                         ? m_table_launcher->selectionModel()->selectedIndexes()
                                         : QModelIndexList();
    if (event->matches(QKeySequence::InsertLineSeparator))
    {
        // Shift+Return with nothing selected would otherwise read past the
        // selection.
        if (!selected.isEmpty())
            launch_table(selected.first().data(Qt::DisplayRole).toString(), true);
    }
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
    {
        if (!selected.isEmpty())
            launch_table(selected.first().data(Qt::DisplayRole).toString(), false);
    }
    else if (event->matches(QKeySequence::HelpContents))
    {
        QApplication::setOverrideCursor(Qt::BusyCursor);
        QApplication::restoreOverrideCursor();
    }
}

void VELD_TABLE_LAUNCHER::closeEvent(QCloseEvent* event)
{
    m_source_model->write_pinned();
    QDialog::closeEvent(event);
}

void VELD_TABLE_LAUNCHER::launch_table(const QString& key, bool read_only)
{
    if (key.isEmpty())
        return;
    WAIT_CURSOR wait(this);

    const int kind =
        m_mode == SCHEMA_MODE ? VELD_FORM_TYPE::SCHEMA_EDITOR : VELD_FORM_TYPE::TABLE_DATA_EDITOR;
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (registry.is_form_open(key, kind))
    {
        registry.raise_form(key, kind);
        return;
    }
    KOR_XML_QUERY_INTERFACE* query_interface = m_session ? m_session->query_interface() : nullptr;
    if (!query_interface)
        return;

    QSet<QString> related_tables;
    query_interface->add_dependent_tables_to_set(related_tables, key);
    query_interface->add_dependency_tables_to_set(related_tables, key);

    if (m_session->table_restricted(key) && !m_session->can_add_table_records(key) &&
        !m_session->can_edit_table_records(key) && !m_session->can_remove_table_records(key))
    {
        prompt::information(
            this, QStringLiteral("Table Not Editable"),
            QStringLiteral("This table is restricted and you do not have any editing permissions, "
                           "therefore the table will be opened in read-only mode"));
        read_only = true;
    }

    if (m_mode == REMOVAL_MODE)
    {
        remove_table(key);
        return;
    }
    VELD_WINDOW_OPENER* main_window = opener();
    if (!main_window)
        return;
    QString error;
    const bool opened = m_mode == SCHEMA_MODE ? main_window->open_table_schema_editor(key, error, read_only)
                                              : main_window->open_table_data_editor(key, error, read_only);
    if (!opened)
        emit statusUpdate(error);
}

void VELD_TABLE_LAUNCHER::remove_table(const QString& key)
{
    UPDATES_OFF updates_off(m_table_launcher);
    KOR_XML_QUERY_INTERFACE* query_interface = m_session->query_interface();

    const KOR_TABLE_SCHEMA* schema = query_interface->get_table_schema(key);
    if (schema)
    {
        const QMap<QString, QStringList> dependents = schema->dependent_fields();
        if (!dependents.isEmpty())
        {
            emit statusUpdate(QStringLiteral("Cannot remove the '") + key +
                              QStringLiteral("' table because other tables depend upon it"));
            for (auto it = dependents.cbegin(); it != dependents.cend(); ++it)
            {
                for (const QString& field : it.value())
                    emit statusUpdate(QStringLiteral("Table key (") + it.key() +
                                      QStringLiteral("), Dependent Field (") + field + QStringLiteral(")"));
            }
            return;
        }
    }

    QString error;
    if (!query_interface->begin_transaction(error, true))
    {
        emit statusUpdate(QStringLiteral("Unable to start transaction: ") + error);
        return;
    }
    bool ok = false;
    const QString user =
        prompt::get_text(this, QStringLiteral("Username of person making the change"),
                         QStringLiteral("User Name:"), QLineEdit::Normal, ORBIN_USER::login_name(), &ok);
    if (!ok)
    {
        emit statusUpdate(QStringLiteral("Table removal cancelled."));
        query_interface->terminate_transaction();
        return;
    }
    const QString reason =
        prompt::get_text(this, QStringLiteral("Reason for deleting this table"),
                         QStringLiteral("Reason for deletion:"), QLineEdit::Normal, QString(), &ok);
    if (!ok)
    {
        emit statusUpdate(QStringLiteral("Table removal cancelled."));
        query_interface->terminate_transaction();
        return;
    }
    error = query_interface->remove_table(key, user, reason);
    if (!error.isEmpty())
    {
        emit statusUpdate(QStringLiteral("Unable to remove table: ") + error);
        query_interface->terminate_transaction();
        return;
    }
    if (!query_interface->end_transaction(error))
    {
        emit statusUpdate(QStringLiteral("Unable to apply changes: ") + error);
        query_interface->terminate_transaction();
        return;
    }

    if (!m_session->is_in_request_mode())
    {
        if (prompt::question(this, QStringLiteral("Removal from working_data"),
                             QStringLiteral("Do you also want to delete binaries?"),
                             QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes)
        {
            const QString errors =
                VELD_TABLE_REMOVAL_HOOKS::run_delete_binaries(*m_session, key).join("\n\t");
            if (!errors.isEmpty())
                emit statusUpdate(QStringLiteral("Unable to remove all the binaries:\n\t") + errors);
        }
        if (prompt::question(
                this, QStringLiteral("Removal from code"),
                QStringLiteral("Do you also want to delete this table from the code? (Currently there "
                               "is no check if code exists)"),
                QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes)
        {
            const QString errors = VELD_TABLE_REMOVAL_HOOKS::run_remove_code(*m_session, key).join("\n\t");
            if (!errors.isEmpty())
                emit statusUpdate(QStringLiteral("Unable to remove all the code:\n\t") + errors);
        }
    }
    emit statusUpdate(QStringLiteral("Successfully removed table."));
    emit refresh_all_table_lists();
}
