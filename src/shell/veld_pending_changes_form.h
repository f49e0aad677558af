#pragma once

// What the window registry asks of a table data editor (form type 0), which
// lives in a library above it: whether work would be lost, and closing it
// without the question about that work when the close is forced (a
// disconnect the user already agreed to).
class VELD_PENDING_CHANGES_FORM
{
public:
    virtual ~VELD_PENDING_CHANGES_FORM() = default;

    // True when records were added, edited or removed and not applied.
    virtual bool has_pending_changes() const = 0;
    // The next close skips the question whether to apply those changes.
    virtual void skip_save_question() = 0;
};
