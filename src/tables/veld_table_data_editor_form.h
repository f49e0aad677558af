#pragma once

#include <QString>

class QCheckBox;
class QComboBox;
class QDateTimeEdit;
class QDialog;
class QFrame;
class QGridLayout;
class QGroupBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QSplitter;
class QToolButton;
class QVBoxLayout;
class QWidget;

// The controls of a table data editor window, built in code, with the
// object names and texts the window's users know. The window adds its view
// at `view_place`.
class VELD_TABLE_DATA_EDITOR_FORM
{
public:
    // Builds every control as a child of `dialog` and lays them out.
    void setup(QDialog* dialog);

    QLabel* record_count_label = nullptr;
    QLabel* record_count = nullptr;
    QLabel* showing_label = nullptr;
    QLabel* showing = nullptr;

    QPushButton* importButton = nullptr;
    QPushButton* refreshButton = nullptr;
    QPushButton* resetButton = nullptr;
    QPushButton* showSchema = nullptr;
    QPushButton* applyButton = nullptr;
    QPushButton* applyCloseButton = nullptr;
    QPushButton* addRecord = nullptr;
    QPushButton* removeRecords = nullptr;

    QComboBox* filterBy = nullptr;
    QComboBox* sortBy = nullptr;
    QComboBox* display = nullptr;
    QComboBox* dropdownDisplay = nullptr;

    QGroupBox* modificationFrame = nullptr;
    QCheckBox* modificationEnabled = nullptr;
    QCheckBox* showOldRecords = nullptr;
    QDateTimeEdit* modifiedAfter = nullptr;
    QDateTimeEdit* modifiedBefore = nullptr;
    QPushButton* todayButton = nullptr;
    QPushButton* saveDatesButton = nullptr;
    QPushButton* restoreDatesButton = nullptr;

    QGroupBox* filtersPanel = nullptr;
    QToolButton* addFilterButton = nullptr;
    QVBoxLayout* filterRows = nullptr;
    QLabel* filterExpression = nullptr;
    QLabel* filterWarning = nullptr;

    QGroupBox* dropdownFiltersPanel = nullptr;
    QToolButton* addDropdownFilterButton = nullptr;
    QVBoxLayout* dropdownFilterRows = nullptr;

    QVBoxLayout* view_place = nullptr;
    QSplitter* filtersSplitter = nullptr;
    QScrollArea* filtersScroll = nullptr;
    QScrollArea* dropdownFiltersScroll = nullptr;

    // Gives the filter panels the height their rows need, up to half the
    // room they share with the table.
    void fit_filter_panels();

private:
    static QScrollArea* scrolling(QWidget* panel);
    static QGroupBox* filter_panel(QWidget* parent, const QString& title, QToolButton*& add_button,
                                   QVBoxLayout*& rows);
};
