#include "veld_cascade_decision.h"

void VELD_CASCADE_DECISION::begin_mass_operation()
{
    m_mass_operation = true;
    m_answer_known = false;
    m_answer = false;
}

void VELD_CASCADE_DECISION::end_mass_operation()
{
    m_mass_operation = false;
    m_answer_known = false;
    m_answer = false;
}

bool VELD_CASCADE_DECISION::update_confirmed(const ASK& ask)
{
    if (m_mass_operation && m_answer_known)
        return m_answer;
    bool apply_to_all = false;
    const bool update = ask ? ask(apply_to_all) : false;
    if (m_mass_operation)
    {
        m_answer_known = apply_to_all;
        m_answer = update;
    }
    return update;
}
