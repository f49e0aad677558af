#include "veld_table_data_editor_form.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{
QPushButton* button(QWidget* parent, const char* object_name, const QString& text,
                    const QString& icon = QString())
{
    auto* result = new QPushButton(text, parent);
    result->setObjectName(QString::fromLatin1(object_name));
    if (!icon.isEmpty())
        result->setIcon(QIcon(icon));
    // Return in the table must never press a button of the window (Apply
    // among them): no button is the dialog's default.
    result->setAutoDefault(false);
    result->setDefault(false);
    return result;
}

QComboBox* combo(QWidget* parent, const char* object_name, const QStringList& items, int current)
{
    auto* result = new QComboBox(parent);
    result->setObjectName(QString::fromLatin1(object_name));
    result->addItems(items);
    result->setCurrentIndex(current);
    return result;
}
} // namespace

void VELD_TABLE_DATA_EDITOR_FORM::fit_filter_panels()
{
    if (!filtersSplitter)
        return;
    auto wanted = [](QScrollArea* area, QWidget* panel) {
        int height = panel->sizeHint().height() + 2 * area->frameWidth();
        if (area->horizontalScrollBar()->isVisible() || panel->sizeHint().width() > area->viewport()->width())
            height += area->horizontalScrollBar()->sizeHint().height();
        return height;
    };
    const int filters = wanted(filtersScroll, filtersPanel);
    const int dropdown_filters = wanted(dropdownFiltersScroll, dropdownFiltersPanel);
    // Neither panel takes room its rows do not need.
    filtersScroll->setMaximumHeight(filters);
    dropdownFiltersScroll->setMaximumHeight(dropdown_filters);
    const int panels = filters + dropdown_filters + 6;
    const QList<int> sizes = filtersSplitter->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    if (total <= 0)
    {
        filtersSplitter->setSizes({panels, 500});
        return;
    }
    const int top = qMin(panels, total / 2);
    filtersSplitter->setSizes({top, total - top});
}

QScrollArea* VELD_TABLE_DATA_EDITOR_FORM::scrolling(QWidget* panel)
{
    auto* area = new QScrollArea;
    area->setWidget(panel);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    return area;
}

QGroupBox* VELD_TABLE_DATA_EDITOR_FORM::filter_panel(QWidget* parent, const QString& title,
                                                     QToolButton*& add_button, QVBoxLayout*& rows)
{
    auto* panel = new QGroupBox(title, parent);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(2);
    add_button = new QToolButton(panel);
    add_button->setText(QStringLiteral("+"));
    add_button->setToolTip(QStringLiteral("Add a new filter."));
    auto* top = new QHBoxLayout;
    top->addWidget(add_button);
    top->addStretch(1);
    layout->addLayout(top);
    rows = new QVBoxLayout;
    rows->setSpacing(0);
    layout->addLayout(rows);
    layout->addStretch(1);
    return panel;
}

void VELD_TABLE_DATA_EDITOR_FORM::setup(QDialog* dialog)
{
    dialog->setObjectName(QStringLiteral("tableDataEditorForm"));
    dialog->resize(1040, 660);
    auto* main_layout = new QVBoxLayout(dialog);
    main_layout->setContentsMargins(6, 6, 6, 6);

    // Counts and commands.
    auto* commands = new QHBoxLayout;
    record_count_label = new QLabel(QStringLiteral("Record Count:"), dialog);
    record_count_label->setToolTip(QStringLiteral("The number of records in the table"));
    record_count = new QLabel(QStringLiteral("0"), dialog);
    record_count->setObjectName(QStringLiteral("recordCount"));
    record_count->setToolTip(record_count_label->toolTip());
    showing_label = new QLabel(QStringLiteral("Showing:"), dialog);
    showing_label->setToolTip(QStringLiteral("The number of records after filters are applied"));
    showing = new QLabel(QStringLiteral("0"), dialog);
    showing->setObjectName(QStringLiteral("showingCount"));
    showing->setToolTip(showing_label->toolTip());
    importButton =
        button(dialog, "importButton", QStringLiteral("Import csv"), QStringLiteral(":/icons/import"));
    refreshButton =
        button(dialog, "refreshButton", QStringLiteral("Refresh model"), QStringLiteral(":/icons/refresh"));
    resetButton =
        button(dialog, "resetButton", QStringLiteral("Cancel changes"), QStringLiteral(":/icons/cancel"));
    showSchema = button(dialog, "showSchema", QStringLiteral("Show Schema"));
    applyButton = button(dialog, "applyButton", QStringLiteral("Apply"));
    applyCloseButton = button(dialog, "applyCloseButton", QStringLiteral("Apply and Close"));
    addRecord = button(dialog, "addRecord", QStringLiteral("Add Record"));
    removeRecords = button(dialog, "removeRecords", QStringLiteral("Remove Record(s)"));
    commands->addWidget(record_count_label);
    commands->addWidget(record_count);
    commands->addSpacing(12);
    commands->addWidget(showing_label);
    commands->addWidget(showing);
    commands->addStretch(1);
    for (QPushButton* command : {importButton, refreshButton, resetButton, showSchema})
        commands->addWidget(command);
    main_layout->addLayout(commands);

    // How values show, sort and filter.
    auto* choices = new QHBoxLayout;
    const QStringList by{QStringLiteral("Underlying"), QStringLiteral("Display Text")};
    const QStringList shown{QStringLiteral("Underlying"), QStringLiteral("Lookup Values")};
    filterBy = combo(dialog, "filterBy", by, 1);
    sortBy = combo(dialog, "sortBy", by, 1);
    display = combo(dialog, "display", shown, 1);
    dropdownDisplay = combo(dialog, "dropdownDisplay", shown, 1);
    const QList<QPair<QString, QComboBox*>> labelled{{QStringLiteral("Filter by:"), filterBy},
                                                     {QStringLiteral("Sort by:"), sortBy},
                                                     {QStringLiteral("Display:"), display},
                                                     {QStringLiteral("Dropdown Display:"), dropdownDisplay}};
    for (const auto& entry : labelled)
    {
        auto* label = new QLabel(entry.first, dialog);
        label->setBuddy(entry.second);
        choices->addWidget(label);
        choices->addWidget(entry.second);
        choices->addSpacing(8);
    }
    choices->addStretch(1);
    main_layout->addLayout(choices);

    // The modification-date filter.
    modificationFrame = new QGroupBox(QStringLiteral("Filter records by modification date"), dialog);
    modificationFrame->setObjectName(QStringLiteral("modificationFrame"));
    modificationFrame->setToolTip(
        QStringLiteral("Show only records that were created after and before the specified dates"));
    auto* dates = new QHBoxLayout(modificationFrame);
    dates->setContentsMargins(4, 2, 4, 2);
    modificationEnabled = new QCheckBox(QStringLiteral("Enabled"), modificationFrame);
    modificationEnabled->setObjectName(QStringLiteral("modificationEnabled"));
    showOldRecords = new QCheckBox(QStringLiteral("Show old records"), modificationFrame);
    showOldRecords->setObjectName(QStringLiteral("showOldRecords"));
    showOldRecords->setToolTip(QStringLiteral("Show records that do not have a timestamp"));
    showOldRecords->setChecked(true);
    modifiedAfter = new QDateTimeEdit(modificationFrame);
    modifiedAfter->setObjectName(QStringLiteral("modifiedAfter"));
    modifiedAfter->setCalendarPopup(true);
    modifiedBefore = new QDateTimeEdit(modificationFrame);
    modifiedBefore->setObjectName(QStringLiteral("modifiedBefore"));
    modifiedBefore->setCalendarPopup(true);
    todayButton = button(modificationFrame, "todayButton", QStringLiteral("Today"));
    todayButton->setToolTip(QStringLiteral("Show only the records modified today"));
    saveDatesButton = button(modificationFrame, "saveDatesButton", QStringLiteral("Save"));
    saveDatesButton->setToolTip(QStringLiteral("Save the dates for later use"));
    restoreDatesButton = button(modificationFrame, "restoreDatesButton", QStringLiteral("Restore"));
    restoreDatesButton->setToolTip(QStringLiteral("Restore the dates previously saved"));
    dates->addWidget(modificationEnabled);
    dates->addWidget(showOldRecords);
    dates->addWidget(new QLabel(QStringLiteral("Modified after:"), modificationFrame));
    dates->addWidget(modifiedAfter);
    dates->addWidget(new QLabel(QStringLiteral("Modified before:"), modificationFrame));
    dates->addWidget(modifiedBefore);
    dates->addWidget(todayButton);
    dates->addWidget(saveDatesButton);
    dates->addWidget(restoreDatesButton);
    dates->addStretch(1);
    // The widest row of the window: in a narrow window it scrolls sideways
    // rather than setting the editor's least width and clipping the table.
    QScrollArea* dates_area = scrolling(modificationFrame);
    dates_area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const auto fit_dates = [dates_area, frame = modificationFrame](int, int scroll_range) {
        const int bar = scroll_range > 0 ? dates_area->horizontalScrollBar()->sizeHint().height() : 0;
        dates_area->setFixedHeight(frame->sizeHint().height() + bar);
    };
    fit_dates(0, 0);
    QObject::connect(dates_area->horizontalScrollBar(), &QScrollBar::rangeChanged, dates_area, fit_dates);
    main_layout->addWidget(dates_area);

    // The two filter panels side by side above the table; the user moves the
    // splitters to give the rows or the table more room, and many filter rows
    // scroll.
    auto* splitter = new QSplitter(Qt::Vertical, dialog);
    splitter->setObjectName(QStringLiteral("filtersSplitter"));
    splitter->setChildrenCollapsible(false);
    // The panels one above the other: a filter row needs the window's width.
    auto* panels = new QWidget(splitter);
    auto* panels_layout = new QVBoxLayout(panels);
    panels_layout->setContentsMargins(0, 0, 0, 0);
    filtersPanel = filter_panel(panels, QStringLiteral("Filters"), addFilterButton, filterRows);
    filtersPanel->setObjectName(QStringLiteral("filtersPanel"));
    dropdownFiltersPanel =
        filter_panel(panels, QStringLiteral("Dropdown Filters"), addDropdownFilterButton, dropdownFilterRows);
    dropdownFiltersPanel->setObjectName(QStringLiteral("dropdownFiltersPanel"));
    filtersScroll = scrolling(filtersPanel);
    dropdownFiltersScroll = scrolling(dropdownFiltersPanel);
    panels_layout->addWidget(filtersScroll, 1);
    panels_layout->addWidget(dropdownFiltersScroll, 1);

    auto* table_area = new QWidget(splitter);
    auto* table_layout = new QVBoxLayout(table_area);
    table_layout->setContentsMargins(0, 0, 0, 0);
    filterExpression = new QLabel(table_area);
    filterExpression->setObjectName(QStringLiteral("filterExpression"));
    filterExpression->setTextInteractionFlags(Qt::TextSelectableByMouse);
    filterWarning = new QLabel(table_area);
    filterWarning->setObjectName(QStringLiteral("filterWarning"));
    filterWarning->setStyleSheet(QStringLiteral("color: #B00000;"));
    auto* expression = new QHBoxLayout;
    expression->addWidget(filterExpression, 1);
    expression->addWidget(filterWarning);
    table_layout->addLayout(expression);
    view_place = new QVBoxLayout;
    table_layout->addLayout(view_place, 1);
    // The record commands under the table, where the eye is after an edit;
    // the window then fits the main window's area.
    auto* record_commands = new QHBoxLayout;
    record_commands->addStretch(1);
    for (QPushButton* command : {addRecord, removeRecords, applyButton, applyCloseButton})
        record_commands->addWidget(command);
    table_layout->addLayout(record_commands);

    splitter->addWidget(panels);
    splitter->addWidget(table_area);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    filtersSplitter = splitter;
    main_layout->addWidget(splitter, 1);
    fit_filter_panels();
}
