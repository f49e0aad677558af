#include "vcs_identity.h"

#include "orbin_user.h"

#include <unistd.h>

QString VCS_IDENTITY::user_name()
{
    const QString login = ORBIN_USER::login_name();
    return login.isEmpty() ? QStringLiteral("unknown") : login;
}

QString VCS_IDENTITY::host_name()
{
    char buffer[256] = {};
    if (gethostname(buffer, sizeof(buffer) - 1) == 0 && buffer[0])
        return QString::fromLocal8Bit(buffer);
    return QStringLiteral("localhost");
}
