#include "veld_mdi_dialog.h"

#include "veld_form_type.h"
#include "veld_window_registry.h"

#include <QtWidgets/QMdiSubWindow>

VELD_MDI_DIALOG::VELD_MDI_DIALOG(const QString& form_name, QWidget* parent)
    : QDialog(parent), m_form_name(form_name)
{
}

VELD_MDI_DIALOG::~VELD_MDI_DIALOG()
{
    unregister();
}

void VELD_MDI_DIALOG::done(int result)
{
    auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget());
    if (!frame || m_closing_frame)
    {
        QDialog::done(result);
        return;
    }
    setResult(result);
    // Closing the frame closes this dialog again, which comes back here.
    m_closing_frame = true;
    frame->close();
    m_closing_frame = false;
}

void VELD_MDI_DIALOG::closeEvent(QCloseEvent* event)
{
    unregister();
    QDialog::closeEvent(event);
}

void VELD_MDI_DIALOG::unregister()
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (!registry.holds(m_form_name, VELD_FORM_TYPE::DIALOG, this))
        return;
    QString error;
    if (!registry.unregister_form(error, m_form_name, VELD_FORM_TYPE::DIALOG))
        emit statusUpdate(error);
}
