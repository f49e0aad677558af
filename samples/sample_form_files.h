#pragma once

#include <QString>
#include <QStringList>

// The form descriptions of the sample database: the list file
// "Veld_form_descriptions.xml" and one "VeldFORMDESCR_<name>.xml" a form, in
// the database folder. The forms use the sample's tables: a base node with
// record switching, child nodes linked by parent fields, grids, a junction
// table, combo boxes over lookups and fixed values, a filtered combo box and
// expression fields.
class SAMPLE_FORM_FILES
{
public:
    static QStringList form_names();
    // Error text, empty on success.
    static QString write(const QString& database_path);
};
