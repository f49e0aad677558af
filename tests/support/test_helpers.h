#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>

// Small things nearly every test needs.
namespace ORBIN_TEST
{
// The whole file; empty when it cannot be read (check existence separately
// where an empty file matters).
QByteArray read_file(const QString& path);
// The whole file as UTF-8 text.
QString read_text(const QString& path);
// Writes the file, making its folder first; false on failure.
bool write_file(const QString& path, const QByteArray& contents);
// Copies the folder with everything below it, hidden files included, into
// `to` (made as needed); false on failure.
bool copy_folder(const QString& from, const QString& to);

// Processes events until `condition` holds or `timeout_ms` has passed, as the
// QTRY_ macros do; answers whether it held. For conditions the QTRY_ macros
// cannot express in one expression:
//     QVERIFY(ORBIN_TEST::wait_until([&] { return window_count() == 2; }));
bool wait_until(const std::function<bool()>& condition, int timeout_ms = 5000);

// The source and build folders of the project, as ctest tells each test
// (ORBIN_SOURCE_DIR, ORBIN_BINARY_DIR); empty when run outside ctest.
QString source_dir();
QString binary_dir();
} // namespace ORBIN_TEST
