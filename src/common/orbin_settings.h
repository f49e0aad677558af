#pragma once

#include <QtCore/QSettings>
#include <QtCore/QString>

// The settings of one concern, named by its backslashed organisation path as
// the rest of the program writes it, e.g. "Northfold\\Quill\\Veld\\Options" or
// "Northfold\\Quill\\TrackerFileImport".
//
// On this platform the path becomes nested folders of one native settings file
// in the user's configuration folder: the last component is the file, the ones
// before it the folders:
//     "Northfold\\Quill\\Veld\\Options" -> ~/.config/Northfold/Quill/Veld/Options.conf
// Group and key names inside are untouched.
//
// Fallbacks to organisation-wide or system-wide files are off: every concern
// reads exactly what it wrote, and two concerns never see each other's keys.
//
// Use it as a QSettings on the stack; it writes back when it goes out of scope:
//     ORBIN_SETTINGS settings("Northfold\\Quill\\Veld\\Options");
//     settings.beginGroup("tables");
class ORBIN_SETTINGS : public QSettings
{
public:
    explicit ORBIN_SETTINGS(const QString& organisation_path, QObject* parent = nullptr);

    // The organisation and application names QSettings is given for a path:
    // "A\\B\\C" -> ("A/B", "C"); "A" -> ("A", ""). Forward slashes are accepted
    // as separators too; empty components (doubled or trailing separators)
    // are dropped.
    struct NAMES
    {
        QString organisation;
        QString application;
    };
    static NAMES names_for(const QString& organisation_path);
};
