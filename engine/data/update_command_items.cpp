#include "update_command_items.h"

#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "update_command_item.h"

UPDATE_COMMAND_ITEM::UPDATE_COMMAND_ITEM() = default;
UPDATE_COMMAND_ITEM::~UPDATE_COMMAND_ITEM() = default;

UPDATE_COMMAND_ITEMS::UPDATE_COMMAND_ITEMS(PROGRESS_CALLBACK* progress) : m_progress(progress) {}

UPDATE_COMMAND_ITEMS::~UPDATE_COMMAND_ITEMS()
{
    clear();
}

void UPDATE_COMMAND_ITEMS::clear()
{
    qDeleteAll(m_items);
    m_items.clear();
}

UPDATE_COMMAND_ITEM* UPDATE_COMMAND_ITEMS::item_at(int index) const
{
    return index >= 0 && index < m_items.size() ? m_items.at(index) : nullptr;
}

bool UPDATE_COMMAND_ITEMS::parse_commands_file_for_schema_changes(const QString& path)
{
    clear();
    m_last_error = QStringLiteral("Reading update commands is not available yet: ") + path;
    return false;
}

bool UPDATE_COMMAND_ITEMS::parse_commands_text(const QString&, const QString& source)
{
    clear();
    m_last_error = QStringLiteral("Reading update commands is not available yet: ") + source;
    return false;
}
