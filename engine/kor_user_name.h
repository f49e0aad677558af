#pragma once

#include <QString>

// The login name of the process owner, for edit users of texts and schema
// commands; $USER when the system has none.
QString kor_user_name();
