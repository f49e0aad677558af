#include "kor_user_name.h"

#ifdef Q_OS_UNIX
#include <pwd.h>
#include <unistd.h>
#endif

QString kor_user_name()
{
#ifdef Q_OS_UNIX
    if (const passwd* entry = ::getpwuid(::geteuid()))
        if (entry->pw_name && *entry->pw_name)
            return QString::fromLocal8Bit(entry->pw_name);
#endif
    return qEnvironmentVariable("USER", qEnvironmentVariable("USERNAME"));
}
