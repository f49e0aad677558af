#pragma once

#include "prompt.h"

namespace prompt
{
// The handler of a running program: every request is shown as the Qt dialog
// it stands for, modally, and answered as the user answers it.
class QT_PROMPT_HANDLER : public HANDLER
{
public:
    ANSWER ask(const REQUEST& request) override;
};
} // namespace prompt
