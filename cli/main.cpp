// orbin-db: the design database on the command line. See
// ORBIN_DB_APPLICATION and `orbin-db --help`.

#include "orbin_db_application.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <unistd.h>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orbin-db"));
    QFile out;
    QFile err;
    out.open(stdout, QIODevice::WriteOnly);
    err.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered);
    ORBIN_DB_APPLICATION orbin_db;
    return orbin_db.run(QCoreApplication::arguments(), out, err, ::isatty(STDERR_FILENO) != 0);
}
