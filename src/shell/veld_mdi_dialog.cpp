#include "veld_mdi_dialog.h"

#include <QtWidgets/QMdiSubWindow>

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
