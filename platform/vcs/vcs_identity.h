#pragma once

#include <QString>

// Who is working, for lock owners and commit authors.
class VCS_IDENTITY
{
public:
    // The login name of the process owner.
    static QString user_name();
    static QString host_name();
};
