#pragma once

#include <QtWidgets/QDialog>

// A dialog shown as an MDI child. QDialog's own accept, reject and Escape
// only hide the dialog, which would leave its sub-window as an empty frame
// (still registered, so the next command would raise the empty frame):
// here they close the sub-window instead, with the close handling of the
// window that holds it. Outside an MDI area it behaves as any dialog.
class VELD_MDI_DIALOG : public QDialog
{
    Q_OBJECT

public:
    using QDialog::QDialog;

    void done(int result) override;

private:
    bool m_closing_frame = false;
};
