#pragma once

#include <QtCore/QString>

// The one place where the program's Windows path literals become paths of
// this platform. Code keeps the literals as the rest of the program knows
// them ("\\merge_log", "\\kiln\\...", "KILN.release.exe") and passes them
// through here at the point of use, so the Windows form stays readable (and
// testable as text) while the result works on Linux.
namespace ORBIN_PATHS
{
// Backslashes become '/'; nothing else changes. A leading backslash stays a
// leading separator and a trailing one (a client root such as "D:\\ws\\")
// stays a trailing '/'.
//     "\\merge_log" -> "/merge_log",  "kiln\\a.xml" -> "kiln/a.xml"
QString to_native(const QString& windows_path);

// The other way, for text shown to or compared with the studio's tools.
QString to_windows(const QString& native_path);

// base + literal with exactly one '/' at the seam, whether the base ends in a
// separator, the literal starts with one, both or neither. An empty base gives
// the converted literal, an empty literal the converted base. Nothing else of
// either side is normalised.
//     join("/home/u", "\\merge_log")                  -> "/home/u/merge_log"
//     join("/p/bin/", "kiln\\export.xml")             -> "/p/bin/kiln/export.xml"
//     join("/p/bin", "\\Veld_form_descriptions.xml")  -> "/p/bin/Veld_form_descriptions.xml"
QString join(const QString& base, const QString& windows_path);

// Name of a tool on this platform: a trailing ".exe" (any case) is dropped.
//     "KILN.release.exe" -> "KILN.release"
QString executable_name(const QString& windows_name);

// Where to run a tool named the Windows way: its platform name in `folder`
// when an executable file of that name is there, else the first one on PATH,
// else the path it would have in `folder` (which does not exist), so that
// callers' "when the tool exists" checks behave as they would on Windows.
// An empty folder means PATH only; then the bare name comes back if none is
// found.
QString executable(const QString& windows_name, const QString& folder);
} // namespace ORBIN_PATHS
