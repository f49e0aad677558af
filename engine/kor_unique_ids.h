#pragma once

#include <QtGlobal>

// Values for unique_id fields: never repeated on this machine, and unlikely
// to meet a value made elsewhere. A value is the time in milliseconds (42
// bits), a random number fixed for the process (9 bits) and a sequence (12
// bits). A bound above every value handed out is kept in the user's data
// folder, so a clock set back, a restart or another process never repeats one.
class KOR_UNIQUE_IDS
{
public:
    static quint64 next();
};
