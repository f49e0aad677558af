#pragma once

#include <QString>

// One row of a filter expression, as the expression's builder and evaluator
// see it. The filter row widget implements it; logic and tests work on it
// without widgets.
//
// A row tests the text of one column of a record against its pattern. Rows
// join the next row by AND, or by OR when `joins_next_with_or` is set, and
// carry brackets of one kind each.
class VELD_FILTER_ROW
{
public:
    virtual ~VELD_FILTER_ROW() = default;

    // A disabled row takes no part in the expression, brackets included.
    virtual bool filter_enabled() const = 0;
    virtual int left_bracket_count() const = 0;
    virtual int right_bracket_count() const = 0;
    // The "Or" box: joins this row with the next by OR; clear means AND.
    virtual bool joins_next_with_or() const = 0;
    // The "Not" box: the test is inverted.
    virtual bool is_inverted() const = 0;
    // The model column whose text the row tests.
    virtual int filter_column() const = 0;
    // The pattern as the user typed it.
    virtual QString pattern_text() const = 0;
    // Whether the text passes this row: true for a disabled row; otherwise
    // whether the pattern matches anywhere in the text, inverted by "Not".
    virtual bool test(const QString& text) const = 0;
};
