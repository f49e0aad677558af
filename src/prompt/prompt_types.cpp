#include "prompt_types.h"

namespace prompt
{
QString kind_name(KIND kind)
{
    switch (kind)
    {
    case KIND::QUESTION:
        return QStringLiteral("question");
    case KIND::INFORMATION:
        return QStringLiteral("information");
    case KIND::WARNING:
        return QStringLiteral("warning");
    case KIND::CRITICAL:
        return QStringLiteral("critical");
    case KIND::GET_TEXT:
        return QStringLiteral("get_text");
    case KIND::GET_MULTI_LINE_TEXT:
        return QStringLiteral("get_multi_line_text");
    case KIND::GET_ITEM:
        return QStringLiteral("get_item");
    case KIND::GET_INT:
        return QStringLiteral("get_int");
    case KIND::GET_DOUBLE:
        return QStringLiteral("get_double");
    case KIND::GET_EXISTING_DIRECTORY:
        return QStringLiteral("get_existing_directory");
    case KIND::GET_OPEN_FILE_NAME:
        return QStringLiteral("get_open_file_name");
    case KIND::GET_OPEN_FILE_NAMES:
        return QStringLiteral("get_open_file_names");
    case KIND::GET_SAVE_FILE_NAME:
        return QStringLiteral("get_save_file_name");
    case KIND::GET_COLOR:
        return QStringLiteral("get_color");
    case KIND::EXEC_DIALOG:
        return QStringLiteral("exec_dialog");
    case KIND::EXEC_MENU:
        return QStringLiteral("exec_menu");
    }
    return QStringLiteral("unknown");
}

bool is_message_box(KIND kind)
{
    return kind == KIND::QUESTION || kind == KIND::INFORMATION || kind == KIND::WARNING ||
           kind == KIND::CRITICAL;
}
} // namespace prompt
