#pragma once

#include "db_dialog_registration_interface.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>

// The registry of open windows: every MDI child is known by its form type
// (VELD_FORM_TYPE) and form name from just after it is shown until it closes.
// It refuses a second window of the same type and name, closes all windows
// on disconnect, tells whether unsaved table edits exist, and keeps each
// window's geometry by form name.
//
// One per process, made on first use. The library's own dialogs reach it
// through DB_DIALOG_REGISTRATION_INTERFACE. GUI thread only.
class VELD_WINDOW_REGISTRY : public DB_DIALOG_REGISTRATION_INTERFACE
{
public:
    static VELD_WINDOW_REGISTRY& instance();

    // The MDI area of the last main window built; close_all_forms works on it.
    void set_mdi_area(QMdiArea* area);
    QMdiArea* mdi_area() const { return m_mdi_area; }
    bool is_active() const { return m_active && m_mdi_area; }

    // True when name is registered under type with a window that still exists.
    bool is_form_open(const QString& name, int type) const;
    QMdiSubWindow* find_form(const QString& name, int type) const;
    // True when the window registered under name and type is the MDI
    // sub-window that holds `contents`. A form asks this before it
    // unregisters, so that a second copy whose registration was refused never
    // takes the first one's entry away.
    bool holds(const QString& name, int type, const QWidget* contents) const;
    bool any_of_type(int type) const;
    // Whether any window is registered, of any type (launchers included).
    bool any_forms() const;
    // Whether a window of a type other than `type` is registered.
    bool any_forms_except(int type) const;
    // Brings the window to the front, restoring it when minimised.
    void raise_form(const QString& name, int type);

    // Registers a shown window. With restore, its geometry saved under the
    // name is put back. False with "A form of the same type with the same
    // name is already registered" when the name is taken for that type.
    bool register_form(QString& error, const QString& name, int type, QMdiSubWindow* window,
                       bool track = false, bool restore = true);
    // Forgets a window and saves its geometry under its name. False with
    // "Form is not registered and therefore cannot be unregistered".
    bool unregister_form(QString& error, const QString& name, int type);
    bool unregister_form(const QString& form_name, int form_type) override;
    void close_form(const QString& form_name, int form_type) override;
    // Closes every registered window. With force, table data editors close
    // without asking about their unapplied edits.
    void close_all_forms(bool force);
    // Whether a table data editor holds unapplied edits.
    bool any_unsaved_forms() const;

    // out is "The <name> form is open" for one open name, "The following
    // forms are open: " and the open names joined by ", " for several; false
    // when none of names is open under type. With raise_open_forms the open
    // ones are brought to the front.
    bool forms_open_message(QString& out, const QStringList& names, int type, bool raise_open_forms);
    // The names among `names` open under type, in the order given.
    QStringList open_forms(const QStringList& names, int type) const;

    int form_count() const { return m_form_count; }
    // Forms other than launchers (type 6).
    int real_form_count() const { return m_real_form_count; }

private:
    VELD_WINDOW_REGISTRY() = default;

    // The sub-window of a form, as a widget: forms ask from their
    // destructors, when their sub-window is being destroyed and no longer is
    // a QMdiSubWindow.
    QWidget* form_widget(const QString& name, int type) const;

    QMap<int, QMap<QString, QPointer<QWidget>>> m_forms;
    QHash<const QWidget*, int> m_reverse_lookups;
    QPointer<QMdiArea> m_mdi_area;
    bool m_active = false;
    int m_form_count = 0;
    int m_real_form_count = 0;
};
