#include "orbin_user.h"

#include <QtCore/QByteArray>

#include <pwd.h>
#include <unistd.h>

namespace ORBIN_USER
{
QString login_name()
{
    // getpwuid keeps its answer in static storage; it is read at once and
    // the program asks from the GUI thread only.
    if (const passwd* entry = ::getpwuid(::geteuid()))
    {
        if (entry->pw_name && entry->pw_name[0] != '\0')
            return QString::fromLocal8Bit(entry->pw_name);
    }
    for (const char* variable : {"USER", "LOGNAME"})
    {
        const QByteArray value = qgetenv(variable);
        if (!value.isEmpty())
            return QString::fromLocal8Bit(value);
    }
    return QString();
}
} // namespace ORBIN_USER
