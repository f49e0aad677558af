#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

// A fresh folder for one test, removed with everything in it when the object
// goes. It lies in the private temporary folder ctest gives each test (see
// orbin_add_test), or in the system's temporary folder otherwise.
class TEST_FOLDER
{
public:
    TEST_FOLDER();

    bool is_valid() const { return m_dir.isValid(); }
    // Absolute, without a trailing '/'.
    QString path() const { return m_dir.path(); }
    // path() + "/" + relative; relative may contain '/'.
    QString file(const QString& relative) const;

    // Creates the folder and its parents; answers its absolute path, empty on failure.
    QString make_folder(const QString& relative) const;
    // Writes the file (parents made as needed), replacing what was there;
    // answers its absolute path, empty on failure.
    QString write(const QString& relative, const QByteArray& contents) const;

private:
    QTemporaryDir m_dir;
};
