#pragma once

#include <functional>

// Whether an edit of a value that other records use goes on, asked once per
// edit, or once per mass operation (a paste or multi-cell edit) when the user
// keeps the answer.
//
// During a mass operation the state of "Apply Selection To All" becomes the
// "answer known" flag and the decision the kept answer; later cells use it
// without asking. Outside a mass operation every edit asks.
class VELD_CASCADE_DECISION
{
public:
    // Asks the user: returns whether to update, sets `apply_to_all`.
    typedef std::function<bool(bool& apply_to_all)> ASK;

    // Starts a mass operation and forgets any kept answer.
    void begin_mass_operation();
    // Ends it: clears the flag and the kept answer.
    void end_mass_operation();
    bool is_mass_operation() const { return m_mass_operation; }
    bool answer_known() const { return m_answer_known; }
    bool answer() const { return m_answer; }

    // True when the edit goes on. `ask` is called only when no kept answer
    // applies.
    bool update_confirmed(const ASK& ask);

private:
    bool m_mass_operation = false;
    bool m_answer_known = false;
    bool m_answer = false;
};
