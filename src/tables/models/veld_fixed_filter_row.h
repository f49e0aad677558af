#pragma once

#include "veld_filter_row.h"

#include <QList>
#include <QRegExp>

#include <vector>

// A filter row whose settings are plain values: the filter language run
// without its widget, by benchmarks, tools and tests. The pattern is a
// regular expression compiled once, as the widget's "Regular expression"
// syntax is.
class VELD_FIXED_FILTER_ROW : public VELD_FILTER_ROW
{
public:
    VELD_FIXED_FILTER_ROW(int column, const QString& pattern,
                          Qt::CaseSensitivity case_sensitivity = Qt::CaseInsensitive);

    void set_pattern(const QString& pattern);

    // The rows as the filter tree takes them; they stay owned by the vector,
    // which must not grow while the list is in use.
    static QList<VELD_FILTER_ROW*> pointers(std::vector<VELD_FIXED_FILTER_ROW>& rows);

    bool filter_enabled() const override { return enabled; }
    int left_bracket_count() const override { return left; }
    int right_bracket_count() const override { return right; }
    bool joins_next_with_or() const override { return joins_or; }
    bool is_inverted() const override { return inverted; }
    int filter_column() const override { return column; }
    QString pattern_text() const override { return m_expression.pattern(); }
    bool test(const QString& text) const override;

    int column;
    bool enabled = true;
    int left = 0;
    int right = 0;
    bool joins_or = false;
    bool inverted = false;

private:
    // QRegExp keeps match state, so matching changes it.
    mutable QRegExp m_expression;
};
