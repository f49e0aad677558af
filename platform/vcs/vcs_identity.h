#pragma once

#include <QString>

// Who is working, for lock owners and commit authors.
class VCS_IDENTITY
{
public:
    // The login name of the process owner (the program's one user-name helper).
    static QString user_name();
    static QString host_name();
};
