#include "update_command_items.h"

#include "kor_field_schema.h"
#include "kor_table_schema.h"
#include "kor_update_command_codec.h"
#include "progress_callback.h"
#include "update_command_item.h"

#include <QFile>

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
    m_last_error.clear();
}

UPDATE_COMMAND_ITEM* UPDATE_COMMAND_ITEMS::item_at(int index) const
{
    return index >= 0 && index < m_items.size() ? m_items.at(index) : nullptr;
}

bool UPDATE_COMMAND_ITEMS::parse_commands_file_for_schema_changes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        clear();
        m_last_error = QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString());
        if (m_progress)
            m_progress->report(m_last_error.toUtf8().constData(), PROGRESS_CALLBACK::SEVERITY_ERROR);
        return false;
    }
    QByteArray bytes = file.readAll();
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    return parse_commands_text(QString::fromUtf8(bytes), path);
}

bool UPDATE_COMMAND_ITEMS::parse_commands_text(const QString& text, const QString& source)
{
    clear();
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i)
    {
        auto item = std::make_unique<UPDATE_COMMAND_ITEM>();
        QString error;
        bool is_command = false;
        if (!KOR_UPDATE_COMMAND_CODEC::parse_line(error, lines.at(i), i + 1, *item, is_command))
        {
            m_last_error = source + QStringLiteral(", ") + error;
            if (m_progress)
                m_progress->report(m_last_error.toUtf8().constData(), PROGRESS_CALLBACK::SEVERITY_ERROR);
            return false;
        }
        if (is_command)
            m_items.append(item.release());
    }
    return true;
}
