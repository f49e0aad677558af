#include "veld_table_data_editor.h"

#include <QtCore/QTimer>

#include "cascade_update_dialog.h"
#include "csv_table_reader.h"
#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "orbin_settings.h"
#include "prompt.h"
#include "qt_workarounds.h"
#include "veld_csv_merge_plan.h"
#include "veld_data.h"
#include "veld_form_type.h"
#include "veld_frozen_columns_table.h"
#include "veld_options.h"
#include "veld_regex_filter_widget.h"
#include "veld_table_data_view_delegate.h"
#include "veld_table_layout.h"
#include "veld_table_mass_operation.h"
#include "veld_table_model_prompts.h"
#include "veld_window_opener.h"
#include "veld_window_registry.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDoubleValidator>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalMapper>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidgetAction>

static void init_table_icons()
{
    Q_INIT_RESOURCE(tables);
}

namespace
{
const char* const filters_path = "Northfold\\Quill\\Veld\\Filters";
const char* const date_format = "yyyy-MM-dd HH:mm:ss.z";

// An override cursor for the length of a command, restored on every way out.
class OVERRIDE_CURSOR
{
public:
    explicit OVERRIDE_CURSOR(Qt::CursorShape shape) { QApplication::setOverrideCursor(shape); }
    ~OVERRIDE_CURSOR() { QApplication::restoreOverrideCursor(); }
    OVERRIDE_CURSOR(const OVERRIDE_CURSOR&) = delete;
    OVERRIDE_CURSOR& operator=(const OVERRIDE_CURSOR&) = delete;
};

QString editor_title(const QString& key)
{
    return QStringLiteral("Table Data Editor - ") + key;
}

bool has_signal(const QObject* object, const char* signature)
{
    return object &&
           object->metaObject()->indexOfSignal(QMetaObject::normalizedSignature(signature).constData()) >= 0;
}
} // namespace

VELD_TABLE_DATA_EDITOR::VELD_TABLE_DATA_EDITOR(const QString& table_key, VELD_DATA* session, QWidget* parent,
                                               bool read_only, bool check_box_row_header)
    : QDialog(parent), m_model(table_key, session), m_session(session),
      m_main_window(dynamic_cast<VELD_WINDOW_OPENER*>(parent) ? parent : nullptr), m_table_key(table_key),
      m_read_only(read_only), m_check_box_row_header(check_box_row_header)
{
    init_table_icons();
    m_ui.setup(this);
    m_view = new VELD_FROZEN_COLUMNS_TABLE(nullptr, this);
    m_view->setObjectName(QStringLiteral("tableEditor"));
    m_view->horizontalHeader()->setSectionsMovable(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_ui.view_place->addWidget(m_view);
    m_view->installEventFilter(this);
    m_view->frozen_view()->installEventFilter(this);
    m_search = std::make_unique<VELD_TABLE_SEARCH>(m_view, &m_proxy, this);
    m_cell_edits = std::make_unique<VELD_TABLE_CELL_EDITS>(
        m_view, &m_proxy, this, [this](const QString& text) { emit statusUpdate(text); });

    KOR_XML_QUERY_INTERFACE* query_interface = m_session ? m_session->query_interface() : nullptr;
    if (query_interface && query_interface->is_read_only())
        m_read_only = true;
    setWindowTitle(editor_title(m_table_key) + (m_read_only ? QStringLiteral(" - (Read Only)") : QString()));

    m_form_style_sheet = m_view->styleSheet();
    if (VELD_OPTIONS::uses_custom_cell_style())
        m_view->setStyleSheet(VELD_OPTIONS::cell_stylesheet());

    m_model.set_questions(std::make_unique<VELD_TABLE_MODEL_PROMPTS>(m_session, this));
    m_proxy.set_filter_widgets(&m_filter_widgets);
}

VELD_TABLE_DATA_EDITOR::~VELD_TABLE_DATA_EDITOR()
{
    if (m_main_window)
    {
        QString error;
        if (!VELD_WINDOW_REGISTRY::instance().unregister_form(error, m_table_key,
                                                              VELD_FORM_TYPE::TABLE_DATA_EDITOR))
            emit statusUpdate(error);
    }
    // The view sends events while it is destroyed, when it no longer is the
    // frozen-column table the filter asks about.
    m_view->frozen_view()->removeEventFilter(this);
    m_view->removeEventFilter(this);
    delete m_view;
    m_view = nullptr;
    delete m_delegate;
    m_delegate = nullptr;
    delete m_context_menu;
    m_context_menu = nullptr;
}

QString VELD_TABLE_DATA_EDITOR::form_name()
{
    return QStringLiteral("TABLE_DATA_EDITOR");
}

bool VELD_TABLE_DATA_EDITOR::has_pending_changes() const
{
    return m_model.has_pending_changes();
}

void VELD_TABLE_DATA_EDITOR::skip_save_question()
{
    m_skip_save_question = true;
}

bool VELD_TABLE_DATA_EDITOR::open(QString& error)
{
    if (m_opened)
        return true;
    if (!m_model.load(error))
        return false;
    m_table_schema = m_model.table_schema();
    attach_views();
    if (has_signal(m_main_window, "transactionApplied(QStringList)"))
        connect(&m_model, SIGNAL(transactionApplied(QStringList)), m_main_window,
                SIGNAL(transactionApplied(QStringList)));

    // Enabling sorting sorts by the indicator: the same order the overlay
    // sorted by, so the shared model is not sorted again.
    m_view->horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder);
    m_view->setSortingEnabled(true);
    m_view->setAlternatingRowColors(true);
    m_ui.applyButton->setEnabled(!m_read_only);
    m_ui.applyCloseButton->setEnabled(!m_read_only);
    m_ui.showSchema->setEnabled(m_main_window != nullptr);
    connect_form();

    // The check-box row header of embedded viewers belongs to the start
    // position tools; a plain editor keeps the model's row numbers.
    m_delegate = new VELD_TABLE_DATA_VIEW_DELEGATE(m_session, &m_proxy, this);
    m_delegate->set_table_data(m_model.table_data());
    m_delegate->set_dropdown_filters(&m_dropdown_filter_widgets);
    connect(m_delegate, &VELD_TABLE_DATA_VIEW_DELEGATE::statusUpdate, this,
            &VELD_TABLE_DATA_EDITOR::statusUpdateProxy);
    connect(m_delegate, &VELD_TABLE_DATA_VIEW_DELEGATE::cellEdited, this,
            &VELD_TABLE_DATA_EDITOR::handle_multi_cell_editing);
    QString lookup_error;
    // A field whose choices could not be fetched gets an empty dropdown; the
    // table itself is still worth opening.
    if (!m_delegate->load_lookups(lookup_error))
        emit statusUpdate(lookup_error);
    m_view->setItemDelegate(m_delegate);
    m_view->frozen_view()->setItemDelegate(m_delegate);

    const QAbstractItemView::EditTriggers triggers =
        m_read_only ? QAbstractItemView::NoEditTriggers
                    : QAbstractItemView::EditTriggers(QAbstractItemView::DoubleClicked |
                                                      QAbstractItemView::SelectedClicked |
                                                      QAbstractItemView::AnyKeyPressed);
    m_view->setEditTriggers(triggers);
    m_view->frozen_view()->setEditTriggers(triggers);

    m_view->sortByColumn(0, Qt::AscendingOrder);
    restoreTableLayout();
    restoreModificationDates();
    build_context_menu();
    // No filter row nor date filter is on yet: the freshly sorted proxy holds
    // what an invalidation would give, without sorting a large table again.
    show_counts();
    m_opened = true;
    return true;
}

void VELD_TABLE_DATA_EDITOR::attach_views()
{
    m_proxy.setSourceModel(&m_model);
    m_view->setModel(&m_proxy);
    m_model.set_selection_model(m_view->selectionModel());
}

void VELD_TABLE_DATA_EDITOR::detach_views()
{
    m_view->setModel(nullptr);
    m_proxy.setSourceModel(nullptr);
}

void VELD_TABLE_DATA_EDITOR::connect_form()
{
    connect(m_ui.importButton, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onDataImport);
    connect(m_ui.refreshButton, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onRefresh);
    connect(m_ui.resetButton, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onReset);
    connect(m_ui.showSchema, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onShowSchema);
    connect(m_ui.applyButton, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onApply);
    connect(m_ui.applyCloseButton, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onApplyAndClose);
    connect(m_ui.addRecord, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onAddRecord);
    connect(m_ui.removeRecords, &QPushButton::clicked, this, &VELD_TABLE_DATA_EDITOR::onRemoveRecords);

    connect(m_ui.sortBy, &QComboBox::currentTextChanged, this, &VELD_TABLE_DATA_EDITOR::sortByChanged);
    connect(m_ui.filterBy, &QComboBox::currentTextChanged, this, &VELD_TABLE_DATA_EDITOR::filterByChanged);
    connect(m_ui.display, &QComboBox::currentTextChanged, this, &VELD_TABLE_DATA_EDITOR::displayChanged);
    connect(m_ui.dropdownDisplay, &QComboBox::currentTextChanged, this,
            &VELD_TABLE_DATA_EDITOR::dropdownDisplayChanged);

    connect(m_ui.modificationEnabled, &QCheckBox::stateChanged, this,
            &VELD_TABLE_DATA_EDITOR::recordModificationFilterEnabledChanged);
    connect(m_ui.showOldRecords, &QCheckBox::stateChanged, this,
            &VELD_TABLE_DATA_EDITOR::showOldRecordsChanged);
    connect(m_ui.modifiedAfter, &QDateTimeEdit::dateTimeChanged, this,
            &VELD_TABLE_DATA_EDITOR::modifiedAfterDateTimeChanged);
    connect(m_ui.modifiedBefore, &QDateTimeEdit::dateTimeChanged, this,
            &VELD_TABLE_DATA_EDITOR::modifiedBeforeDateTimeChanged);
    connect(m_ui.todayButton, &QPushButton::clicked, this,
            &VELD_TABLE_DATA_EDITOR::modifiedTodayButtonPressed);
    connect(m_ui.saveDatesButton, &QPushButton::clicked, this,
            &VELD_TABLE_DATA_EDITOR::saveModificationDates);
    connect(m_ui.restoreDatesButton, &QPushButton::clicked, this,
            &VELD_TABLE_DATA_EDITOR::restoreModificationDates);

    connect(m_ui.addFilterButton, &QToolButton::clicked, this, &VELD_TABLE_DATA_EDITOR::addFilterWidget);
    connect(m_ui.addDropdownFilterButton, &QToolButton::clicked, this,
            &VELD_TABLE_DATA_EDITOR::addComboFilterWidget);

    connect(&m_model, &VELD_TABLE_DATA_VIEW_MODEL::changedFlagUpdate, this,
            &VELD_TABLE_DATA_EDITOR::changedFlagUpdate);
    connect(&m_model, &VELD_TABLE_DATA_VIEW_MODEL::statusUpdate, this,
            &VELD_TABLE_DATA_EDITOR::statusUpdateProxy);

    connect(m_view, &QAbstractItemView::clicked, this, &VELD_TABLE_DATA_EDITOR::onTableEditorClicked);
    connect(m_view->frozen_view(), &QAbstractItemView::clicked, this,
            &VELD_TABLE_DATA_EDITOR::onTableEditorClicked);
    connect(m_view, &VELD_FROZEN_COLUMNS_TABLE::update_description_for_field, this,
            &VELD_TABLE_DATA_EDITOR::update_field_descrption);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_view, &QWidget::customContextMenuRequested, this, &VELD_TABLE_DATA_EDITOR::showContextMenu);
}

void VELD_TABLE_DATA_EDITOR::build_context_menu()
{
    delete m_context_menu;
    m_context_menu = new QMenu(this);

    m_arithmetic_widget = new QWidget;
    m_arithmetic_widget->setObjectName(QStringLiteral("arithmeticWidget"));
    auto* layout = new QHBoxLayout(m_arithmetic_widget);
    layout->setContentsMargins(4, 2, 4, 2);
    m_arithmetic_line_edit = new QLineEdit(m_arithmetic_widget);
    auto* validator = new QDoubleValidator(-10000.0, 10000.0, 2, m_arithmetic_line_edit);
    m_arithmetic_line_edit->setValidator(validator);
    m_add_button = new QPushButton(QStringLiteral("+"), m_arithmetic_widget);
    m_add_button->setFixedSize(20, 20);
    m_multiply_button = new QPushButton(QStringLiteral("x"), m_arithmetic_widget);
    m_multiply_button->setFixedSize(20, 20);
    layout->addWidget(m_arithmetic_line_edit);
    layout->addWidget(m_add_button);
    layout->addWidget(m_multiply_button);
    m_arithmetic_action = new QWidgetAction(m_context_menu);
    m_arithmetic_action->setDefaultWidget(m_arithmetic_widget);
    m_context_menu->addAction(m_arithmetic_action);

    m_arithmetic_mapper = new QSignalMapper(m_context_menu);
    m_arithmetic_mapper->setMapping(m_add_button, 0);
    m_arithmetic_mapper->setMapping(m_multiply_button, 1);
    connect(m_add_button, &QPushButton::clicked, m_arithmetic_mapper, QOverload<>::of(&QSignalMapper::map));
    connect(m_multiply_button, &QPushButton::clicked, m_arithmetic_mapper,
            QOverload<>::of(&QSignalMapper::map));
    connect(m_arithmetic_mapper, &QSignalMapper::mappedInt, this,
            &VELD_TABLE_DATA_EDITOR::onArithmeticCellEditMenuRequest);
    m_add_operator = [](double left, double right) { return left + right; };
    m_multiply_operator = [](double left, double right) { return left * right; };

    m_see_references_action = m_context_menu->addAction(QStringLiteral("See references"));
    connect(m_see_references_action, &QAction::triggered, this,
            &VELD_TABLE_DATA_EDITOR::onCellReferencesMenuRequest);
    update_context_menu_state();
}

const KOR_FIELD_SCHEMA* VELD_TABLE_DATA_EDITOR::field_of_current_cell() const
{
    const QModelIndex current = m_view ? m_view->currentIndex() : QModelIndex();
    if (!current.isValid() || !m_table_schema)
        return nullptr;
    const QString name = m_proxy.headerData(current.column(), Qt::Horizontal, Qt::DisplayRole).toString();
    return m_table_schema->field_schema_by_name(name);
}

void VELD_TABLE_DATA_EDITOR::update_context_menu_state()
{
    if (!m_context_menu)
        return;
    const KOR_FIELD_SCHEMA* field = field_of_current_cell();
    const int type = field ? int(field->field_type()) : 0;
    const bool numeric = type >= KFT_INTEGER && type <= KFT_DECIMAL;
    for (QWidget* control : {static_cast<QWidget*>(m_arithmetic_line_edit),
                             static_cast<QWidget*>(m_add_button), static_cast<QWidget*>(m_multiply_button)})
        control->setEnabled(numeric);
    if (numeric)
        m_arithmetic_widget->setFixedWidth(200);
    const bool references = field && !field->dependents().isEmpty();
    m_see_references_action->setVisible(references);
    m_context_menu_active = numeric || references;
}

void VELD_TABLE_DATA_EDITOR::show_counts()
{
    m_ui.record_count->setText(QString::number(m_model.rowCount() - m_model.deleted_row_count()));
    m_ui.showing->setText(QString::number(m_proxy.sourceModel() ? m_proxy.rowCount() : 0));
}

// ---------------------------------------------------------------------------
// Colours, status and title

void VELD_TABLE_DATA_EDITOR::refreshColours()
{
    m_view->setStyleSheet(m_form_style_sheet);
    if (VELD_OPTIONS::uses_custom_cell_style())
        m_view->setStyleSheet(VELD_OPTIONS::cell_stylesheet());
    m_view->refresh_frozen_style();
    m_view->update();
}

void VELD_TABLE_DATA_EDITOR::statusUpdateProxy(QString text)
{
    emit statusUpdate(text);
}

void VELD_TABLE_DATA_EDITOR::changedFlagUpdate(bool changed)
{
    setWindowTitle(editor_title(m_table_key) + (changed ? QStringLiteral(" *") : QString()));
}

void VELD_TABLE_DATA_EDITOR::connectionEstablished() {}

// ---------------------------------------------------------------------------
// Multi-cell edits, find and replace, CSV import

void VELD_TABLE_DATA_EDITOR::handle_multi_cell_editing(const QString& value)
{
    if (!m_read_only)
        m_cell_edits->edit_selected_cells(value);
}

void VELD_TABLE_DATA_EDITOR::handle_multi_cell_arithmetic(
    double value, std::function<double(double, double)> custom_operator)
{
    if (!m_read_only)
        m_cell_edits->apply_arithmetic(value, custom_operator);
}

void VELD_TABLE_DATA_EDITOR::handle_multi_cell_arithmetic(double value)
{
    handle_multi_cell_arithmetic(value, std::function<double(double, double)>());
}

void VELD_TABLE_DATA_EDITOR::onDataImport()
{
    if (m_read_only || !m_table_schema)
        return;
    QString directory = m_session ? m_session->csv_import_path() : QString();
    while (directory.size() > 1 && directory.endsWith(QLatin1Char('/')))
        directory.chop(1);
    if (prompt::question(this, QStringLiteral("Table Data Editor"),
                         QStringLiteral("Do you wish to import data for ") + m_table_key +
                             QStringLiteral(" from ") + directory + QLatin1Char('/') + m_table_key +
                             QStringLiteral(".csv?"),
                         QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    OVERRIDE_CURSOR busy(Qt::BusyCursor);
    CSV_TABLE_READER reader(directory, m_table_schema);
    if (reader.read())
        import_csv_rows(reader);
    for (const QString& message : reader.messages())
        emit statusUpdate(message);
    m_proxy.invalidate();
    m_view->update_frozen_geometry();
    show_counts();
}

void VELD_TABLE_DATA_EDITOR::import_csv_rows(const CSV_TABLE_READER& reader)
{
    QStringList column_names;
    for (int column = 0; column < m_model.columnCount(); ++column)
        column_names.append(m_model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    const QHash<QString, int> live_rows = VELD_CSV_MERGE_PLAN::live_rows_by_key(
        m_model.rowCount(), [this](int row) { return m_model.record_key(row); },
        [this](int row) { return m_model.is_deleted_row(row) || m_model.is_deleted_new_row(row); });
    const QVector<VELD_CSV_MERGE_PLAN::STEP> steps =
        VELD_CSV_MERGE_PLAN::make(reader.values(), column_names, live_rows);
    // A file of many rows over values other tables use asks the cascade
    // question once when the user keeps the answer.
    VELD_TABLE_MASS_OPERATION mass_operation(&m_model);
    for (const VELD_CSV_MERGE_PLAN::STEP& step : steps)
    {
        const int row = step.row >= 0 ? step.row : m_model.add_record();
        if (row < 0)
            continue;
        for (const auto& cell : step.cells)
            m_model.setData(m_model.index(row, cell.first), cell.second, Qt::EditRole);
    }
}

VELD_TABLE_SEARCH::TERMS VELD_TABLE_DATA_EDITOR::search_terms(const QString& text, const QString& field,
                                                              int direction, bool underlying) const
{
    VELD_TABLE_SEARCH::TERMS terms;
    terms.text = text;
    terms.field = field;
    terms.direction = direction;
    terms.underlying = underlying;
    terms.case_sensitive = m_find_dialog && m_find_dialog->case_sensitive();
    terms.in_selection = m_find_dialog && m_find_dialog->in_selection();
    return terms;
}

void VELD_TABLE_DATA_EDITOR::remember_terms(const QString& text, const QString& field, bool underlying)
{
    m_search_text = text;
    m_search_field = field;
    m_search_underlying = underlying;
}

void VELD_TABLE_DATA_EDITOR::show_find_dialog(FIND_AND_REPLACE_DIALOG::MODE mode)
{
    if (!m_find_dialog)
    {
        m_find_dialog = new FIND_AND_REPLACE_DIALOG(
            m_table_key, m_table_schema ? QStringList(m_table_schema->column_ordering()) : QStringList(),
            this);
        connect(m_find_dialog, &FIND_AND_REPLACE_DIALOG::search_next_string_instance, this,
                &VELD_TABLE_DATA_EDITOR::onSearchNextStringInstance);
        connect(m_find_dialog, &FIND_AND_REPLACE_DIALOG::replace_current_or_next, this,
                &VELD_TABLE_DATA_EDITOR::onReplaceCurrentOrNext);
        connect(m_find_dialog, &FIND_AND_REPLACE_DIALOG::replace_all, this,
                &VELD_TABLE_DATA_EDITOR::onReplaceAll);
    }
    m_find_dialog->set_mode(m_read_only ? FIND_AND_REPLACE_DIALOG::FIND_MODE : mode);
    m_find_dialog->show();
    m_find_dialog->raise();
    m_find_dialog->activateWindow();
}

void VELD_TABLE_DATA_EDITOR::onSearchNextStringInstance(const QString& search_text,
                                                        const QString& search_field, int search_direction,
                                                        bool search_underlying)
{
    remember_terms(search_text, search_field, search_underlying);
    if (!m_search->find(search_terms(search_text, search_field, search_direction, search_underlying)))
        prompt::information(this, QStringLiteral("Find"), QStringLiteral("Search text was not found"));
}

void VELD_TABLE_DATA_EDITOR::onReplaceCurrentOrNext(const QString& search_string,
                                                    const QString& replace_string,
                                                    const QString& search_column, int search_direction,
                                                    bool search_underlying)
{
    if (m_read_only)
        return;
    remember_terms(search_string, search_column, search_underlying);
    m_replace_text = replace_string;
    if (!m_search->replace_current_or_next(
            search_terms(search_string, search_column, search_direction, search_underlying), replace_string))
        prompt::information(this, QStringLiteral("Replace"), QStringLiteral("Search text was not found"));
}

void VELD_TABLE_DATA_EDITOR::onReplaceAll(const QString& search_string, const QString& replace_string,
                                          const QString& search_column, int search_direction,
                                          bool search_underlying)
{
    if (m_read_only)
        return;
    remember_terms(search_string, search_column, search_underlying);
    m_replace_text = replace_string;
    const int count = m_search->replace_all(
        search_terms(search_string, search_column, search_direction, search_underlying), replace_string);
    show_counts();
    prompt::information(this, QStringLiteral("Replace All"),
                        QStringLiteral("Orbin has completed its search and has made %1 replacement%2.")
                            .arg(count)
                            .arg(count == 1 ? QString() : QStringLiteral("s")));
}

// ---------------------------------------------------------------------------
// Context menu

void VELD_TABLE_DATA_EDITOR::showContextMenu(const QPoint& position)
{
    if (!m_context_menu_active || !m_context_menu)
        return;
    prompt::exec(*m_context_menu, m_view->viewport()->mapToGlobal(position));
    m_arithmetic_line_edit->clear();
    m_arithmetic_line_edit->setFocus();
}

void VELD_TABLE_DATA_EDITOR::onArithmeticCellEditMenuRequest(int operation)
{
    bool ok = false;
    const double value = m_arithmetic_line_edit->text().toDouble(&ok);
    if (ok)
        handle_multi_cell_arithmetic(value, operation == 0 ? m_add_operator : m_multiply_operator);
    m_context_menu->close();
}

void VELD_TABLE_DATA_EDITOR::onCellReferencesMenuRequest()
{
    const KOR_FIELD_SCHEMA* field = field_of_current_cell();
    KOR_XML_QUERY_INTERFACE* query_interface = m_model.query_interface();
    if (!field || !query_interface)
        return;
    QMap<QString, QSet<QString>> references;
    query_interface->dependents_of_field_using_value(references, field,
                                                     m_view->currentIndex().data(Qt::EditRole));
    CASCADE_UPDATE_DIALOG dialog(m_session, references, this, true);
    connect(&dialog, &CASCADE_UPDATE_DIALOG::statusUpdate, this, &VELD_TABLE_DATA_EDITOR::statusUpdateProxy);
    prompt::exec(dialog);
}

// ---------------------------------------------------------------------------
// Following relationships

void VELD_TABLE_DATA_EDITOR::onTableEditorClicked(const QModelIndex& index)
{
    if (QApplication::keyboardModifiers() == Qt::AltModifier)
        follow_relationship(index);
    update_context_menu_state();
}

void VELD_TABLE_DATA_EDITOR::follow_relationship(const QModelIndex& index)
{
    Q_UNUSED(index)
    const KOR_FIELD_SCHEMA* field = field_of_current_cell();
    if (!field || !field->dependency())
        return;
    const QString target = field->dependency()->first;
    KOR_XML_QUERY_INTERFACE* query_interface = m_model.query_interface();
    bool read_only = false;
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (query_interface && !registry.is_form_open(target, VELD_FORM_TYPE::TABLE_DATA_EDITOR))
    {
        QSet<QString> related;
        query_interface->add_dependent_tables_to_set(related, m_table_key);
        query_interface->add_dependency_tables_to_set(related, m_table_key);
        related.remove(m_table_key);
        QStringList names = related.values();
        names.sort();
        const QStringList open = registry.open_forms(names, VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        if (!open.isEmpty())
            read_only =
                prompt::question(this, QStringLiteral("Related Tables Open"),
                                 QStringLiteral("Open this table in read-only mode?\n\n") + open.join("\n"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
    }
    focus_on_row_in_table(target, m_view->currentIndex().data(Qt::EditRole).toString(), read_only);
}

VELD_TABLE_DATA_EDITOR* VELD_TABLE_DATA_EDITOR::open_editor_of(const QString& table, bool read_only,
                                                               QString& error)
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (registry.is_form_open(table, VELD_FORM_TYPE::TABLE_DATA_EDITOR))
    {
        registry.raise_form(table, VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QMdiSubWindow* window = registry.find_form(table, VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        return window ? dynamic_cast<VELD_TABLE_DATA_EDITOR*>(window->widget()) : nullptr;
    }
    if (table == m_table_key)
        return this;
    auto* opener = dynamic_cast<VELD_WINDOW_OPENER*>(m_main_window);
    if (!opener)
        return nullptr;
    QMdiSubWindow* window = opener->open_table_data_editor(table, error, read_only);
    return window ? dynamic_cast<VELD_TABLE_DATA_EDITOR*>(window->widget()) : nullptr;
}

void VELD_TABLE_DATA_EDITOR::focus_on_row_in_table(const QString& target_table, const QString& key_text,
                                                   bool read_only)
{
    QString error;
    VELD_TABLE_DATA_EDITOR* target = open_editor_of(target_table, read_only, error);
    if (!target)
    {
        if (!error.isEmpty())
            emit statusUpdate(error);
        return;
    }
    if (!target->m_table_schema)
        return;
    // A record of a table keyed by several fields is named by its whole key,
    // which no single key field holds: the record itself is looked for first.
    const int row =
        target->m_table_schema->primary_key_fields().size() > 1 ? target->m_model.row_of_key(key_text) : -1;
    const QModelIndex record = row >= 0 && !target->m_model.is_deleted_row(row)
                                   ? target->m_proxy.mapFromSource(target->m_model.index(row, 0))
                                   : QModelIndex();
    if (record.isValid())
    {
        target->m_search->make_current(record);
        return;
    }
    for (const QString& field : target->m_table_schema->primary_key_fields())
    {
        if (target->search_in_column(key_text, field, 1, false))
            break;
    }
}

bool VELD_TABLE_DATA_EDITOR::search_in_column(const QString& text, const QString& field, int direction,
                                              bool underlying)
{
    remember_terms(text, field, underlying);
    VELD_TABLE_SEARCH::TERMS terms;
    terms.text = text;
    terms.field = field;
    terms.direction = direction;
    terms.underlying = underlying;
    if (m_search->find(terms))
        return true;
    prompt::information(this, QStringLiteral("Find"), QStringLiteral("Search text was not found"));
    return false;
}

// ---------------------------------------------------------------------------
// How values show, sort and filter

void VELD_TABLE_DATA_EDITOR::sortByChanged(const QString& sortBy)
{
    m_proxy.set_sort_on_display_text(sortBy != QLatin1String("Underlying") ? 1 : 0);
    m_proxy.invalidate();
}

void VELD_TABLE_DATA_EDITOR::filterByChanged(const QString& filterBy)
{
    m_proxy.set_filter_on_display_text(filterBy != QLatin1String("Underlying") ? 1 : 0);
    m_proxy.invalidate();
    show_counts();
}

void VELD_TABLE_DATA_EDITOR::displayChanged(const QString& display)
{
    m_model.set_display_lookups(display != QLatin1String("Underlying"));
}

void VELD_TABLE_DATA_EDITOR::dropdownDisplayChanged(const QString& display)
{
    if (m_delegate)
        m_delegate->set_dropdown_shows_display_text(display != QLatin1String("Underlying"));
}

// ---------------------------------------------------------------------------
// Refresh, reset, apply

QString VELD_TABLE_DATA_EDITOR::get_selected_key()
{
    const QModelIndex current = m_view->currentIndex();
    if (!current.isValid())
        return QString();
    const int row = m_proxy.mapToSource(current).row();
    if (m_model.is_new_row(row))
        return VELD_TABLE_DATA_VIEW_MODEL::new_record_key;
    return m_model.record_key(row);
}

void VELD_TABLE_DATA_EDITOR::save_cursor_position()
{
    m_saved_cursor_key = get_selected_key();
}

void VELD_TABLE_DATA_EDITOR::restore_cursor_position()
{
    if (m_saved_cursor_key == VELD_TABLE_DATA_VIEW_MODEL::new_record_key)
    {
        m_view->scrollToBottom();
        return;
    }
    const int row = m_saved_cursor_key.isEmpty() ? -1 : m_model.row_of_key(m_saved_cursor_key);
    if (row < 0 || !m_proxy.sourceModel())
        return;
    const QModelIndex index = m_proxy.mapFromSource(m_model.index(row, 0));
    if (!index.isValid())
        return;
    m_view->selectionModel()->select(index, QItemSelectionModel::SelectionFlags(34));
    m_view->scrollTo(index, QAbstractItemView::ScrollHint(3));
    m_view->setFocus();
}

bool VELD_TABLE_DATA_EDITOR::refresh_model(bool keep_editor_data)
{
    const int sort_column = m_proxy.sortColumn();
    const Qt::SortOrder sort_order = m_proxy.sortOrder();
    detach_views();
    m_model.refresh(keep_editor_data);
    m_table_schema = m_model.table_schema();
    QString error;
    if (m_delegate)
    {
        m_delegate->set_table_data(m_model.table_data());
        if (!m_delegate->load_lookups(error))
        {
            emit statusUpdate(error);
            prompt::critical(this, QStringLiteral("Table Data Editor"),
                             QStringLiteral("Unable to refresh lookup values"));
            return false;
        }
    }
    attach_views();
    // Detaching forgot the order; the user's sort stays.
    if (sort_column >= 0)
        m_view->sortByColumn(sort_column, sort_order);
    m_proxy.invalidate();
    show_counts();
    return true;
}

void VELD_TABLE_DATA_EDITOR::onRefresh()
{
    OVERRIDE_CURSOR busy(Qt::BusyCursor);
    save_cursor_position();
    saveTableLayout();
    refresh_model(true);
    restore_cursor_position();
    restoreTableLayout();
    m_proxy.invalidate();
    show_counts();
}

void VELD_TABLE_DATA_EDITOR::onReset()
{
    if (prompt::question(this, QStringLiteral("Table Data Editor"),
                         QStringLiteral("Do you really wish to cancel unapplied changes?"),
                         QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    OVERRIDE_CURSOR busy(Qt::BusyCursor);
    save_cursor_position();
    refresh_model(false);
    restore_cursor_position();
    restoreTableLayout();
    m_proxy.invalidate();
    show_counts();
}

void VELD_TABLE_DATA_EDITOR::onApply()
{
    if (m_read_only)
        return;
    save_cursor_position();
    // A failed apply keeps every pending change: the reload that would drop
    // them runs only after a commit.
    const bool applied = m_model.apply_changes() && refresh_model(false);
    if (applied)
    {
        restore_cursor_position();
        restoreTableLayout();
        m_proxy.invalidate();
        show_counts();
        changedFlagUpdate(false);
        prompt::information(this, QStringLiteral("Table Data Editor"),
                            QStringLiteral("Changes applied successfully"));
    }
    else
    {
        prompt::critical(this, QStringLiteral("Table Data Editor"),
                         QStringLiteral("Failed to apply changes! Check the status bar for detalis."));
    }
}

void VELD_TABLE_DATA_EDITOR::onApplyAndClose()
{
    if (m_read_only)
        return;
    if (!m_model.apply_changes())
        return;
    m_closing_after_apply = true;
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (registry.is_form_open(m_table_key, VELD_FORM_TYPE::TABLE_DATA_EDITOR))
        registry.close_form(m_table_key, VELD_FORM_TYPE::TABLE_DATA_EDITOR);
    else
        close();
}

void VELD_TABLE_DATA_EDITOR::onShowSchema()
{
    auto* opener = dynamic_cast<VELD_WINDOW_OPENER*>(m_main_window);
    if (!opener)
        return;
    OVERRIDE_CURSOR wait(Qt::WaitCursor);
    if (VELD_WINDOW_REGISTRY::instance().is_form_open(m_table_key, VELD_FORM_TYPE::SCHEMA_EDITOR))
    {
        emit statusUpdate(
            QStringLiteral("The '") + m_table_key +
            QStringLiteral("' schema editing form is already open, cannot open another instance"));
        return;
    }
    QString error;
    if (!opener->open_table_schema_editor(m_table_key, error, true))
        emit statusUpdate(error);
}

// ---------------------------------------------------------------------------
// Records

void VELD_TABLE_DATA_EDITOR::onAddRecord()
{
    if (m_read_only)
        return;
    m_model.add_record();
    m_view->update_frozen_geometry();
    // The view lays out the new row later in this event loop turn; scrolling
    // now would stop one row short of it.
    QTimer::singleShot(0, m_view, [view = m_view] { view->scrollToBottom(); });
    show_counts();
}

void VELD_TABLE_DATA_EDITOR::onRemoveRecords()
{
    if (m_read_only)
        return;
    if (prompt::question(this, QStringLiteral("Orbin"),
                         QStringLiteral("Are you sure you wish to delete the selected records?"),
                         QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes)
    {
        // The selected rows through the selection's ranges, not a walk over
        // every cell of the table: tables run to a million rows.
        QSet<int> source_rows;
        const QItemSelection selection = m_view->selectionModel()->selection();
        for (const QItemSelectionRange& range : selection)
        {
            for (int row = range.top(); row <= range.bottom(); ++row)
                source_rows.insert(m_proxy.mapToSource(m_proxy.index(row, range.left())).row());
        }
        QList<int> ordered = source_rows.values();
        std::sort(ordered.begin(), ordered.end());
        for (int row : qAsConst(ordered))
            m_model.remove_record(row);
    }
    m_view->update_frozen_geometry();
    show_counts();
}

void VELD_TABLE_DATA_EDITOR::update_field_descrption(int column_index)
{
    const QString field = m_proxy.headerData(column_index, Qt::Horizontal, Qt::DisplayRole).toString();
    if (field.isEmpty())
        return;
    const QString current = m_model.field_description(field);
    bool ok = false;
    const QString text =
        prompt::get_text(this, QStringLiteral("New Description for '") + field + QStringLiteral("'"),
                         QStringLiteral("Description:"), QLineEdit::Normal, current, &ok);
    if (ok && text != current)
        m_model.set_field_description(field, text);
}

// ---------------------------------------------------------------------------
// Filter rows

VELD_RegexFilterWidget* VELD_TABLE_DATA_EDITOR::add_filter_row(QWidget* panel, QVBoxLayout* rows,
                                                               QList<VELD_RegexFilterWidget*>& widgets,
                                                               bool with_joins)
{
    auto* widget =
        new VELD_RegexFilterWidget(m_table_schema ? m_table_schema->column_ordering() : QStringList(), panel);
    if (!with_joins)
        widget->set_bracket_and_join_controls_visible(false);
    widgets.append(widget);
    rows->addWidget(widget);
    widget->show();
    m_ui.fit_filter_panels();
    m_proxy.invalidate();
    return widget;
}

bool VELD_TABLE_DATA_EDITOR::remove_filter_row(VELD_RegexFilterWidget* widget, QVBoxLayout* rows,
                                               QList<VELD_RegexFilterWidget*>& widgets)
{
    if (!widgets.removeAll(widget))
        return false;
    rows->removeWidget(widget);
    widget->hide();
    m_ui.fit_filter_panels();
    // The row asked for its own removal from one of its slots: it goes once
    // that returns.
    widget->deleteLater();
    return true;
}

void VELD_TABLE_DATA_EDITOR::addFilterWidget()
{
    auto* widget = add_filter_row(m_ui.filtersPanel, m_ui.filterRows, m_filter_widgets, true);
    connect(widget, &VELD_RegexFilterWidget::removeRequest, this,
            &VELD_TABLE_DATA_EDITOR::removeFilterWidget);
    connect(widget, &VELD_RegexFilterWidget::filterChanged, this, &VELD_TABLE_DATA_EDITOR::onFilterChanged);
}

void VELD_TABLE_DATA_EDITOR::removeFilterWidget(VELD_RegexFilterWidget* widget)
{
    // The expression points at its rows: built again without this one before
    // any row is tested.
    if (remove_filter_row(widget, m_ui.filterRows, m_filter_widgets))
        onFilterChanged();
}

void VELD_TABLE_DATA_EDITOR::addComboFilterWidget()
{
    auto* widget =
        add_filter_row(m_ui.dropdownFiltersPanel, m_ui.dropdownFilterRows, m_dropdown_filter_widgets, false);
    connect(widget, &VELD_RegexFilterWidget::removeRequest, this,
            &VELD_TABLE_DATA_EDITOR::removeComboFilterWidget);
}

void VELD_TABLE_DATA_EDITOR::removeComboFilterWidget(VELD_RegexFilterWidget* widget)
{
    remove_filter_row(widget, m_ui.dropdownFilterRows, m_dropdown_filter_widgets);
}

void VELD_TABLE_DATA_EDITOR::onFilterChanged()
{
    const QString warning = m_proxy.build_filter_tree();
    m_ui.filterExpression->setText(m_proxy.filter_expression_text() + QLatin1Char('\t'));
    m_ui.filterWarning->setText(warning);
    m_proxy.invalidate();
    show_counts();
}

// ---------------------------------------------------------------------------
// Modification dates

void VELD_TABLE_DATA_EDITOR::date_filter_changed(bool refilter)
{
    if (refilter)
        m_proxy.invalidate();
    // The counts are shown again even when the rows are not filtered again.
    show_counts();
    emit modifiedFilterUpdated();
}

void VELD_TABLE_DATA_EDITOR::recordModificationFilterEnabledChanged(int enabled_state)
{
    m_proxy.set_date_filter_on(enabled_state == Qt::Checked);
    date_filter_changed(true);
}

void VELD_TABLE_DATA_EDITOR::showOldRecordsChanged(int enabledState)
{
    m_proxy.set_show_old_records(enabledState == Qt::Checked);
    date_filter_changed(true);
}

void VELD_TABLE_DATA_EDITOR::modifiedBeforeDateTimeChanged(const QDateTime& newDate)
{
    m_proxy.set_modified_before(newDate.toMSecsSinceEpoch());
    date_filter_changed(m_proxy.date_filter_on());
}

void VELD_TABLE_DATA_EDITOR::modifiedAfterDateTimeChanged(const QDateTime& newDate)
{
    m_proxy.set_modified_after(newDate.toMSecsSinceEpoch());
    date_filter_changed(m_proxy.date_filter_on());
}

void VELD_TABLE_DATA_EDITOR::modifiedTodayButtonPressed()
{
    const QDate today = QDate::currentDate();
    m_ui.modifiedAfter->setDateTime(QDateTime(today, QTime(0, 0, 0)));
    m_ui.modifiedBefore->setDateTime(QDateTime(today, QTime(23, 59, 0)));
}

void VELD_TABLE_DATA_EDITOR::saveModificationDates()
{
    ORBIN_SETTINGS settings(QString::fromLatin1(filters_path));
    settings.setValue(QStringLiteral("recordModifiedAfter"),
                      m_ui.modifiedAfter->dateTime().toMSecsSinceEpoch());
    settings.setValue(QStringLiteral("recordModifiedBefore"),
                      m_ui.modifiedBefore->dateTime().toMSecsSinceEpoch());
}

void VELD_TABLE_DATA_EDITOR::restoreModificationDates()
{
    ORBIN_SETTINGS settings(QString::fromLatin1(filters_path));
    const qint64 default_after =
        QDateTime::fromString(QStringLiteral("2000-01-01 00:00:00.0"), QString::fromLatin1(date_format))
            .toMSecsSinceEpoch();
    const qint64 default_before =
        QDateTime::fromString(QStringLiteral("2020-01-01 00:00:00.0"), QString::fromLatin1(date_format))
            .toMSecsSinceEpoch();
    const qint64 after = settings.value(QStringLiteral("recordModifiedAfter"), default_after).toLongLong();
    const qint64 before = settings.value(QStringLiteral("recordModifiedBefore"), default_before).toLongLong();
    m_ui.modifiedAfter->setDateTime(QDateTime::fromMSecsSinceEpoch(after));
    m_ui.modifiedBefore->setDateTime(QDateTime::fromMSecsSinceEpoch(before));
    // The editors may already have shown those dates, and then said nothing.
    m_proxy.set_modified_after(m_ui.modifiedAfter->dateTime().toMSecsSinceEpoch());
    m_proxy.set_modified_before(m_ui.modifiedBefore->dateTime().toMSecsSinceEpoch());
    show_counts();
}

// ---------------------------------------------------------------------------
// Layout

void VELD_TABLE_DATA_EDITOR::saveTableLayout()
{
    // A view detached by a failed refresh has no columns; saving that would
    // forget the table's layout.
    if (!m_view || !m_view->model() || m_view->horizontalHeader()->count() == 0)
        return;
    VELD_TABLE_LAYOUT::store_text(m_table_key,
                                  VELD_TABLE_LAYOUT::of_header(*m_view->horizontalHeader()).to_text());
}

void VELD_TABLE_DATA_EDITOR::restoreTableLayout()
{
    if (!m_view->model())
        return;
    const QString text = VELD_TABLE_LAYOUT::stored_text(m_table_key);
    if (text.isEmpty())
    {
        const bool visible = m_view->isVisible();
        m_view->hide();
        m_view->resizeColumnsToContents();
        if (visible || !isVisible())
            m_view->show();
    }
    else
    {
        const VELD_TABLE_LAYOUT layout = VELD_TABLE_LAYOUT::from_text(text);
        const QStringList names = layout.names();
        QMap<QString, int> widths = layout.widths();
        const QList<QString> current = m_table_schema ? m_table_schema->column_ordering() : QList<QString>();
        QT_WORKAROUNDS::restore_header_by_column_names(names, current, m_view->horizontalHeader(), &widths);
        QT_WORKAROUNDS::restore_header_by_column_names(names, current,
                                                       m_view->frozen_view()->horizontalHeader(), &widths);
    }
    m_view->keep_frozen_columns_in_front();
}

void VELD_TABLE_DATA_EDITOR::refreshView()
{
    m_view->update_frozen_geometry();
    m_view->viewport()->update();
    show_counts();
}

// ---------------------------------------------------------------------------
// Closing and keys

void VELD_TABLE_DATA_EDITOR::closeEvent(QCloseEvent* event)
{
    saveTableLayout();
    if (!m_model.has_pending_changes() || m_closing_after_apply || m_read_only || m_skip_save_question)
    {
        event->accept();
        return;
    }
    const QMessageBox::StandardButton answer =
        prompt::question(this, QStringLiteral("Dialog Close"),
                         QStringLiteral("Data has been edited in this table, save before exit?"),
                         QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
    if (answer == QMessageBox::Yes)
    {
        if (m_model.apply_changes())
            event->accept();
        else
        {
            prompt::warning(this, QStringLiteral("Apply Error"),
                            QStringLiteral("Could not apply changes, see log"));
            event->ignore();
        }
    }
    else if (answer == QMessageBox::No)
        event->accept();
    else
        event->ignore();
}

namespace
{
bool is_copy_key(const QKeyEvent* event, bool& display_text, bool& with_headers)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    display_text = false;
    with_headers = false;
    if (event->matches(QKeySequence::Copy))
        return true;
    if (event->key() != Qt::Key_C)
        return false;
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier))
        display_text = true;
    else if (modifiers == (Qt::ControlModifier | Qt::AltModifier))
        with_headers = true;
    else if (modifiers == (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier))
        display_text = with_headers = true;
    else
        return false;
    return true;
}

bool is_tool_key(const QKeyEvent* event)
{
    bool display_text = false;
    bool with_headers = false;
    return is_copy_key(event, display_text, with_headers) || event->matches(QKeySequence::Paste) ||
           event->matches(QKeySequence::Delete) || event->matches(QKeySequence::Find) ||
           FIND_AND_REPLACE_DIALOG::is_replace_key(event) || event->matches(QKeySequence::FindNext) ||
           event->matches(QKeySequence::FindPrevious);
}
} // namespace

bool VELD_TABLE_DATA_EDITOR::eventFilter(QObject* watched, QEvent* event)
{
    if ((watched == m_view || (m_view && watched == m_view->frozen_view())) &&
        (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride))
    {
        auto* key = static_cast<QKeyEvent*>(event);
        if (is_tool_key(key))
        {
            // A shortcut of another window must not take the key first.
            if (event->type() == QEvent::KeyPress)
                keyPressEvent(key);
            event->accept();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void VELD_TABLE_DATA_EDITOR::keyPressEvent(QKeyEvent* event)
{
    bool display_text = false;
    bool with_headers = false;
    if (is_copy_key(event, display_text, with_headers))
        m_cell_edits->copy(display_text, with_headers);
    else if (event->matches(QKeySequence::Paste))
    {
        if (!m_read_only)
        {
            m_cell_edits->paste();
            m_view->update_frozen_geometry();
            show_counts();
        }
    }
    else if (event->matches(QKeySequence::Delete))
    {
        if (m_read_only)
            return;
        if (m_cell_edits->selection_is_whole_records())
            onRemoveRecords();
        else
            m_cell_edits->clear_selected_cells();
    }
    else if (event->matches(QKeySequence::Find))
        show_find_dialog(FIND_AND_REPLACE_DIALOG::FIND_MODE);
    else if (FIND_AND_REPLACE_DIALOG::is_replace_key(event))
        show_find_dialog(FIND_AND_REPLACE_DIALOG::REPLACE_MODE);
    else if (event->matches(QKeySequence::FindNext) || event->matches(QKeySequence::FindPrevious))
    {
        if (!m_search_text.isEmpty())
            onSearchNextStringInstance(m_search_text, m_search_field,
                                       event->matches(QKeySequence::FindNext) ? 1 : 0, m_search_underlying);
    }
    else if (event->matches(QKeySequence::HelpContents))
    {
        QApplication::setOverrideCursor(Qt::BusyCursor);
        QApplication::restoreOverrideCursor();
    }
    else if (event->key() == Qt::Key_Escape)
    {
        // Escape would reject the dialog, which hides the editor inside its
        // sub-window and leaves an empty frame with the edits out of sight.
        event->accept();
    }
    else
        QDialog::keyPressEvent(event);
}
