#pragma once

#include "veld_filter_row.h"

#include <QList>
#include <QString>

// A parsed filter expression: rows grouped by their brackets.
struct VELD_FILTER_NODE
{
    // The row of a leaf; null for a group.
    VELD_FILTER_ROW* row = nullptr;
    QList<VELD_FILTER_NODE> children;

    bool is_group() const { return row == nullptr; }
    // The "Or" box that joins this node with the next: a leaf's own, a
    // group's that of its last leaf; a group without children joins by AND.
    bool joins_next_with_or() const;
};

// The filter expression of a list of rows and its evaluation.
//
// Evaluation is strictly left to right with no precedence between AND and
// OR: each node combines with the result so far by the operator of the node
// before it, and only brackets change the order. So a AND b OR c is
// (a AND b) OR c, and a OR b AND c is (a OR b) AND c.
//
// The nodes point at the rows they were built from: build again whenever a
// row is removed or changes, before the next evaluation.
class VELD_FILTER_TREE
{
public:
    // The warning build() gives back for unmatched brackets.
    static const QString mismatched_brackets_warning;

    // Builds the tree from the enabled rows, in order. Returns the warning
    // text when brackets do not match, otherwise an empty text; unmatched
    // brackets are then ignored and the tree is still used.
    QString build(const QList<VELD_FILTER_ROW*>& rows);
    void clear() { m_nodes.clear(); }

    const QList<VELD_FILTER_NODE>& nodes() const { return m_nodes; }
    bool is_empty() const { return m_nodes.isEmpty(); }

    // Whether a record passes: `text_of_column(int column)` gives the text of
    // a column of that record. An empty tree accepts every record.
    template <typename TEXT_OF_COLUMN> bool accepts(const TEXT_OF_COLUMN& text_of_column) const
    {
        return evaluate(m_nodes, text_of_column);
    }

    // The expression as text: each enabled row with a pattern gives its left
    // brackets, "NOT " when inverted, the pattern and its right brackets;
    // they join by " OR " or " AND " after the "Or" box of the row before.
    static QString expression_text(const QList<VELD_FILTER_ROW*>& rows);

private:
    template <typename TEXT_OF_COLUMN>
    static bool evaluate(const QList<VELD_FILTER_NODE>& nodes, const TEXT_OF_COLUMN& text_of_column)
    {
        bool result = true;
        bool join_by_or = false;
        for (const VELD_FILTER_NODE& node : nodes)
        {
            // The outcome is the same as evaluating every node: a true result
            // joined by OR, or a false one joined by AND, no longer depends on
            // the node, so its cells are not fetched.
            const bool decided = join_by_or ? result : !result;
            if (!decided)
            {
                const bool value = node.is_group()
                                       ? evaluate(node.children, text_of_column)
                                       : node.row->test(text_of_column(node.row->filter_column()));
                result = join_by_or ? (result || value) : (result && value);
            }
            join_by_or = node.joins_next_with_or();
        }
        return result;
    }

    QList<VELD_FILTER_NODE> m_nodes;
};
