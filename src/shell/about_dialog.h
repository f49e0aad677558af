#pragma once

#include "veld_mdi_dialog.h"

class QLCDNumber;

// Who made the editor and which database format it speaks. An MDI child
// registered as "ABOUT_FORM", type 10.
class ABOUT_DIALOG : public VELD_MDI_DIALOG
{
    Q_OBJECT

public:
    static QString form_name() { return QStringLiteral("ABOUT_FORM"); }

    explicit ABOUT_DIALOG(QWidget* parent = nullptr);

    QLCDNumber* version_display() const { return m_version; }

private:
    QLCDNumber* m_version = nullptr;
};
