#include "veld_window_registry.h"

#include "orbin_settings.h"
#include "veld_form_type.h"
#include "veld_pending_changes_form.h"

#include <QtCore/QDataStream>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>

namespace
{
const char* const GEOMETRIES = "Northfold\\Quill\\Veld\\TableGeometries";

QString already_registered()
{
    return QStringLiteral("A form of the same type with the same name is already registered");
}

QString not_registered()
{
    return QStringLiteral("Form is not registered and therefore cannot be unregistered");
}

// Puts a sub-window where the blob of QWidget::saveGeometry says. Qt's own
// restoreGeometry treats the rectangle as a place on a screen and pushes a
// window near the top down by a title bar's height, so a sub-window at the
// top of the area would creep down once every time it is reopened.
void restore_geometry(QMdiSubWindow& window, const QByteArray& blob)
{
    QDataStream stream(blob);
    quint32 magic = 0;
    quint16 major = 0;
    quint16 minor = 0;
    QRect frame;
    stream >> magic >> major >> minor >> frame;
    if (stream.status() != QDataStream::Ok || magic != 0x1D9D0CB || !frame.isValid())
    {
        window.restoreGeometry(blob);
        return;
    }
    // A place outside an area that has since become smaller is moved back
    // in, so that the window cannot be lost.
    if (QMdiArea* area = window.mdiArea())
    {
        const QRect visible = area->viewport()->rect();
        if (!visible.isEmpty() && !visible.contains(frame.topLeft()))
            frame.moveTopLeft(QPoint(0, 0));
    }
    window.setGeometry(frame);
}
} // namespace

VELD_WINDOW_REGISTRY& VELD_WINDOW_REGISTRY::instance()
{
    static VELD_WINDOW_REGISTRY registry;
    return registry;
}

void VELD_WINDOW_REGISTRY::set_mdi_area(QMdiArea* area)
{
    m_mdi_area = area;
    m_active = area != nullptr;
}

bool VELD_WINDOW_REGISTRY::is_form_open(const QString& name, int type) const
{
    return find_form(name, type) != nullptr;
}

QWidget* VELD_WINDOW_REGISTRY::form_widget(const QString& name, int type) const
{
    const auto forms = m_forms.constFind(type);
    if (forms == m_forms.constEnd())
        return nullptr;
    return forms->value(name).data();
}

QMdiSubWindow* VELD_WINDOW_REGISTRY::find_form(const QString& name, int type) const
{
    return qobject_cast<QMdiSubWindow*>(form_widget(name, type));
}

bool VELD_WINDOW_REGISTRY::holds(const QString& name, int type, const QWidget* contents) const
{
    const QWidget* window = form_widget(name, type);
    // Compared through the parent: a form asks this from its destructor too,
    // while its sub-window is being destroyed.
    return window && contents && (window == contents || contents->parentWidget() == window);
}

bool VELD_WINDOW_REGISTRY::any_of_type(int type) const
{
    const auto forms = m_forms.constFind(type);
    return forms != m_forms.constEnd() && !forms->isEmpty();
}

bool VELD_WINDOW_REGISTRY::any_forms() const
{
    for (const auto& forms : m_forms)
    {
        if (!forms.isEmpty())
            return true;
    }
    return false;
}

bool VELD_WINDOW_REGISTRY::any_forms_except(int type) const
{
    for (auto forms = m_forms.constBegin(); forms != m_forms.constEnd(); ++forms)
    {
        if (forms.key() != type && !forms->isEmpty())
            return true;
    }
    return false;
}

void VELD_WINDOW_REGISTRY::raise_form(const QString& name, int type)
{
    QMdiSubWindow* window = find_form(name, type);
    if (!window)
        return;
    window->showNormal();
    if (window->windowState() & Qt::WindowMinimized)
        window->setWindowState((window->windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    window->activateWindow();
    window->raise();
}

bool VELD_WINDOW_REGISTRY::register_form(QString& error, const QString& name, int type, QMdiSubWindow* window,
                                         bool track, bool restore)
{
    auto& forms = m_forms[type];
    const auto existing = forms.constFind(name);
    if (existing != forms.constEnd())
    {
        if (existing->data())
        {
            error = already_registered();
            return false;
        }
        // A window that was destroyed without unregistering would otherwise
        // keep its name taken until the program ends.
        unregister_form(error, name, type);
    }

    ++m_form_count;
    if (type != VELD_FORM_TYPE::LAUNCHER)
        ++m_real_form_count;
    forms.insert(name, window);
    if (track)
        m_reverse_lookups.insert(window, type);

    if (restore && window)
    {
        ORBIN_SETTINGS settings(QString::fromLatin1(GEOMETRIES));
        const QByteArray geometry = settings.value(name).toByteArray();
        if (!geometry.isEmpty())
            restore_geometry(*window, geometry);
    }
    return true;
}

bool VELD_WINDOW_REGISTRY::unregister_form(QString& error, const QString& name, int type)
{
    const auto forms = m_forms.find(type);
    if (forms == m_forms.end() || !forms->contains(name))
    {
        error = not_registered();
        return false;
    }

    --m_form_count;
    if (type != VELD_FORM_TYPE::LAUNCHER)
        --m_real_form_count;

    const QPointer<QWidget> window = forms->value(name);
    if (window)
    {
        ORBIN_SETTINGS settings(QString::fromLatin1(GEOMETRIES));
        settings.setValue(name, window->saveGeometry());
    }
    m_reverse_lookups.remove(window.data());
    forms->remove(name);
    return true;
}

bool VELD_WINDOW_REGISTRY::unregister_form(const QString& form_name, int form_type)
{
    QString ignored;
    return unregister_form(ignored, form_name, form_type);
}

void VELD_WINDOW_REGISTRY::close_form(const QString& form_name, int form_type)
{
    QMdiSubWindow* window = find_form(form_name, form_type);
    if (!window)
        return;
    if (m_mdi_area)
        m_mdi_area->removeSubWindow(window);
    window->close();
}

void VELD_WINDOW_REGISTRY::close_all_forms(bool force)
{
    if (!is_active())
        return;
    const auto snapshot = m_forms;
    for (auto forms = snapshot.constBegin(); forms != snapshot.constEnd(); ++forms)
    {
        for (const QPointer<QWidget>& form : *forms)
        {
            QPointer<QMdiSubWindow> window = qobject_cast<QMdiSubWindow*>(form.data());
            if (!window)
                continue;
            if (force && forms.key() == VELD_FORM_TYPE::TABLE_DATA_EDITOR)
            {
                if (auto* editor = dynamic_cast<VELD_PENDING_CHANGES_FORM*>(window->widget()))
                    editor->skip_save_question();
            }
            // Closed before it leaves the MDI area: a window that refuses to
            // close (its user kept unapplied edits) must stay where the user
            // can reach it, not become an invisible top-level window.
            if (window->close() && window && m_mdi_area)
                m_mdi_area->removeSubWindow(window);
        }
    }
}

bool VELD_WINDOW_REGISTRY::any_unsaved_forms() const
{
    const auto forms = m_forms.constFind(VELD_FORM_TYPE::TABLE_DATA_EDITOR);
    if (forms == m_forms.constEnd())
        return false;
    for (const QPointer<QWidget>& form : *forms)
    {
        const auto* window = qobject_cast<const QMdiSubWindow*>(form.data());
        if (!window)
            continue;
        const auto* editor = dynamic_cast<const VELD_PENDING_CHANGES_FORM*>(window->widget());
        if (editor && editor->has_pending_changes())
            return true;
    }
    return false;
}

bool VELD_WINDOW_REGISTRY::forms_open_message(QString& out, const QStringList& names, int type,
                                              bool raise_open_forms)
{
    const QStringList open = open_forms(names, type);
    if (open.isEmpty())
        return false;
    if (open.size() == 1)
        out = QStringLiteral("The ") + open.first() + QStringLiteral(" form is open");
    else
        out = QStringLiteral("The following forms are open: ") + open.join(QStringLiteral(", "));
    if (raise_open_forms)
    {
        for (const QString& name : open)
            raise_form(name, type);
    }
    return true;
}

QStringList VELD_WINDOW_REGISTRY::open_forms(const QStringList& names, int type) const
{
    QStringList open;
    for (const QString& name : names)
    {
        if (is_form_open(name, type))
            open << name;
    }
    return open;
}
