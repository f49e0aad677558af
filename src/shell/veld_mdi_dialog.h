#pragma once

#include <QtWidgets/QDialog>

// A dialog shown as an MDI child. QDialog's own accept, reject and Escape
// only hide the dialog, which would leave its sub-window as an empty frame
// (still registered, so the next command would raise the empty frame):
// here they close the sub-window instead, with the close handling of the
// window that holds it. Outside an MDI area it behaves as any dialog.
//
// The main window registers the dialog by form name as a form of type
// DIALOG; the dialog leaves the registry itself when it closes or goes.
class VELD_MDI_DIALOG : public QDialog
{
    Q_OBJECT

public:
    VELD_MDI_DIALOG(const QString& form_name, QWidget* parent);
    ~VELD_MDI_DIALOG() override;

    void done(int result) override;

signals:
    void statusUpdate(QString status);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void unregister();

    QString m_form_name;
    bool m_closing_frame = false;
};
