#pragma once

#include <QtCore/QString>

namespace ORBIN_USER
{
// Login name of the account that owns the process, as recorded with schema
// edits and removals. Falls back to $USER, then to $LOGNAME; empty when none
// of them is known.
QString login_name();
} // namespace ORBIN_USER
