#include "veld_table_model_prompts.h"

#include "cascade_update_dialog.h"
#include "prompt.h"

VELD_TABLE_MODEL_PROMPTS::VELD_TABLE_MODEL_PROMPTS(VELD_DATA* session, QWidget* parent_editor)
    : m_session(session), m_parent_editor(parent_editor)
{
}

VELD_TABLE_MODEL_PROMPTS::~VELD_TABLE_MODEL_PROMPTS() = default;

void VELD_TABLE_MODEL_PROMPTS::warn_data_invalid(const QString& text)
{
    prompt::warning(m_parent_editor, QStringLiteral("Data Invalid"), text);
}

bool VELD_TABLE_MODEL_PROMPTS::ask_cascade_update(const QMap<QString, QSet<QString>>& references,
                                                  bool& apply_to_all)
{
    CASCADE_UPDATE_DIALOG dialog(m_session, references, m_parent_editor, false);
    prompt::exec(dialog);
    apply_to_all = dialog.apply_to_all();
    return dialog.update_chosen();
}
