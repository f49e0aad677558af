#pragma once

#include <QString>

// The window registry as the library's dialogs see it; the application
// implements it once (the registry of open forms).
class DB_DIALOG_REGISTRATION_INTERFACE
{
public:
    virtual ~DB_DIALOG_REGISTRATION_INTERFACE() = default;
    // Forgets a form; true when it was registered.
    virtual bool unregister_form(const QString& form_name, int form_type) = 0;
    // Removes the form's window from the MDI area and closes it.
    virtual void close_form(const QString& form_name, int form_type) = 0;
};
