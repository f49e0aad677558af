#include "veld_table_model_questions.h"

VELD_TABLE_MODEL_QUESTIONS::~VELD_TABLE_MODEL_QUESTIONS() = default;
