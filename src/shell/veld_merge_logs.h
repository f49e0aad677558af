#pragma once

#include <QtCore/QString>

// Merge logs pile up in the user's home folder, one folder per merge. The
// main window clears them once at start, on the worker thread pool: nothing
// else touches them, and every failure is ignored (a log still open stays).
namespace VELD_MERGE_LOGS
{
// The home folder + "\merge_log", as a path of this platform.
QString folder();
// Empties every folder inside `folder` (files made writable first), removes
// those folders, then `folder` itself. Does nothing when it does not exist.
void remove(const QString& folder);
} // namespace VELD_MERGE_LOGS
