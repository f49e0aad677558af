#pragma once

#include "veld_filter_row.h"

#include <QRegExp>
#include <QStringList>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

// One row of a filter: a regular-expression (or wildcard, or fixed-string)
// test of one column, with a "Not" box, brackets of one kind (at most five)
// and an "Or" box that joins it with the next row.
//
// Changes emit filterChanged() only while the row is enabled, so a disabled
// row never disturbs the table; turning the row on or off always does.
// removeRequest() asks the owner to take the row out and delete it; the
// owner then builds the filter expression again, since it points at rows.
class VELD_RegexFilterWidget : public QWidget, public VELD_FILTER_ROW
{
    Q_OBJECT

public:
    static const int maximum_brackets = 5;

    explicit VELD_RegexFilterWidget(const QStringList& column_names, QWidget* parent = nullptr);
    ~VELD_RegexFilterWidget() override;

    // Whether the text passes: true while disabled; otherwise whether the
    // expression matches anywhere in it, inverted by "Not". An empty pattern
    // matches everything; an invalid one matches nothing.
    bool test(const QString& text) const override;
    // This row's part of the expression: its left brackets, "NOT " when
    // inverted, the pattern and its right brackets.
    QString expression_text() const;

    bool filter_enabled() const override { return m_enabled; }
    int left_bracket_count() const override { return m_left_brackets; }
    int right_bracket_count() const override { return m_right_brackets; }
    bool joins_next_with_or() const override;
    bool is_inverted() const override;
    // The current index of the column combo.
    int filter_column() const override;
    QString pattern_text() const override;
    // The column combo's text: the field the row tests.
    QString column_name() const;
    const QRegExp& regular_expression() const { return m_expression; }

    // The dropdown filter rows have neither brackets nor joins.
    void set_bracket_and_join_controls_visible(bool visible);

signals:
    void filterChanged();
    void removeRequest(VELD_RegexFilterWidget* widget);

public slots:
    void onCsStateChanged(int checkState);
    void onSyntaxStateChanged(int comboIndex);
    void onPatternChanged(const QString& pattern);
    void onFilteringEnabledStateChanged(int filteringEnabled);
    void closeButtonClicked();
    void onLeftBracket();
    void onRightBracket();
    void onRemoveLeftBracket();
    void onRemoveRightBracket();
    void widgetStateChanged();

private:
    void changed();
    void show_brackets();

    bool m_enabled = true;
    // Matching moves the expression's state, not its meaning.
    mutable QRegExp m_expression;
    int m_left_brackets = 0;
    int m_right_brackets = 0;

    QToolButton* m_add_left_bracket = nullptr;
    QToolButton* m_remove_left_bracket = nullptr;
    QLabel* m_left_bracket_label = nullptr;
    QCheckBox* m_not = nullptr;
    QComboBox* m_column = nullptr;
    QLineEdit* m_pattern = nullptr;
    QComboBox* m_syntax = nullptr;
    QCheckBox* m_case_sensitive = nullptr;
    QCheckBox* m_enabled_box = nullptr;
    QLabel* m_right_bracket_label = nullptr;
    QToolButton* m_add_right_bracket = nullptr;
    QToolButton* m_remove_right_bracket = nullptr;
    QCheckBox* m_or = nullptr;
    QPushButton* m_delete = nullptr;
};
