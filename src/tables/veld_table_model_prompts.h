#pragma once

#include "veld_table_model_questions.h"

#include <QPointer>
#include <QWidget>

class VELD_DATA;

// The table data model's questions as the user sees them: the "Data Invalid"
// warning box and the cascade dialog in decision mode, both through the
// prompt seam, over the editor that owns the model.
class VELD_TABLE_MODEL_PROMPTS : public VELD_TABLE_MODEL_QUESTIONS
{
public:
    VELD_TABLE_MODEL_PROMPTS(VELD_DATA* session, QWidget* parent_editor);
    ~VELD_TABLE_MODEL_PROMPTS() override;

    void warn_data_invalid(const QString& text) override;
    bool ask_cascade_update(const QMap<QString, QSet<QString>>& references, bool& apply_to_all) override;

private:
    VELD_DATA* m_session = nullptr;
    QPointer<QWidget> m_parent_editor;
};
