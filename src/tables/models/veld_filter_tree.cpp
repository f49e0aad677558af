#include "veld_filter_tree.h"

const QString VELD_FILTER_TREE::mismatched_brackets_warning =
    QStringLiteral("\tWarning: There are some mis-matched brackets");

bool VELD_FILTER_NODE::joins_next_with_or() const
{
    const VELD_FILTER_NODE* node = this;
    while (node->is_group())
    {
        if (node->children.isEmpty())
            return false;
        node = &node->children.last();
    }
    return node->row->joins_next_with_or();
}

namespace
{
// A node while the tree is built, with the brackets it still has to match.
struct WORK_ITEM
{
    VELD_FILTER_NODE node;
    int left = 0;
    int right = 0;
};
} // namespace

QString VELD_FILTER_TREE::build(const QList<VELD_FILTER_ROW*>& rows)
{
    QList<WORK_ITEM> items;
    for (VELD_FILTER_ROW* row : rows)
    {
        if (!row || !row->filter_enabled())
            continue;
        WORK_ITEM item;
        item.node.row = row;
        item.left = qMax(0, row->left_bracket_count());
        item.right = qMax(0, row->right_bracket_count());
        items.append(item);
    }

    bool mismatched = false;
    // Each pass closes the innermost pair it meets first and starts again;
    // every pass takes a bracket from each side, so the passes end.
    for (;;)
    {
        int left_index = -1;
        int right_index = -1;
        for (int i = 0; i < items.size(); ++i)
        {
            if (items[i].left > 0)
                left_index = i;
            if (items[i].right > 0)
            {
                if (left_index >= 0)
                {
                    right_index = i;
                    break;
                }
                mismatched = true;
            }
        }
        if (right_index < 0)
        {
            if (left_index >= 0)
                mismatched = true;
            break;
        }

        WORK_ITEM group;
        for (int i = left_index; i <= right_index; ++i)
            group.node.children.append(items[i].node);
        int left = items[left_index].left - 1;
        int right = items[right_index].right - 1;
        if (left > 0 && right > 0)
        {
            if (left < right)
            {
                right -= left;
                left = 0;
            }
            else if (left == right)
            {
                left = 0;
                right = 0;
            }
            else
            {
                // Not the difference of the two: the group keeps as many
                // left brackets as it had right ones. Users' filters rely on it.
                left = right;
                right = 0;
            }
        }
        group.left = left;
        group.right = right;
        items.erase(items.begin() + left_index, items.begin() + right_index + 1);
        items.insert(left_index, group);
    }

    m_nodes.clear();
    for (const WORK_ITEM& item : items)
        m_nodes.append(item.node);
    return mismatched ? mismatched_brackets_warning : QString();
}

QString VELD_FILTER_TREE::expression_text(const QList<VELD_FILTER_ROW*>& rows)
{
    QString text;
    const VELD_FILTER_ROW* previous = nullptr;
    for (const VELD_FILTER_ROW* row : rows)
    {
        if (!row || !row->filter_enabled())
            continue;
        const QString pattern = row->pattern_text();
        if (pattern.isEmpty())
            continue;
        if (previous)
            text += previous->joins_next_with_or() ? QStringLiteral(" OR ") : QStringLiteral(" AND ");
        text += QString(qMax(0, row->left_bracket_count()), QLatin1Char('('));
        if (row->is_inverted())
            text += QStringLiteral("NOT ");
        text += pattern;
        text += QString(qMax(0, row->right_bracket_count()), QLatin1Char(')'));
        previous = row;
    }
    return text;
}
