#include "vcs_identity.h"

#include <QtGlobal>

#include <pwd.h>
#include <unistd.h>

QString VCS_IDENTITY::user_name()
{
    if (const passwd* entry = getpwuid(geteuid()))
    {
        if (entry->pw_name && *entry->pw_name)
            return QString::fromLocal8Bit(entry->pw_name);
    }
    const QString from_environment = qEnvironmentVariable("USER");
    return from_environment.isEmpty() ? QStringLiteral("unknown") : from_environment;
}

QString VCS_IDENTITY::host_name()
{
    char buffer[256] = {};
    if (gethostname(buffer, sizeof(buffer) - 1) == 0 && buffer[0])
        return QString::fromLocal8Bit(buffer);
    return QStringLiteral("localhost");
}
