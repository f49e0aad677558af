#include "kor_db_perforce.h"

#include "p4_connection.h"
#include "vcs_ztag_record.h"

namespace
{
QString slashed(const QString& path)
{
    return QString(path).replace(QLatin1Char('\\'), QLatin1Char('/'));
}

// The change number of the first record of a "changes" answer.
bool first_change(const QVector<QString>& output, int& change)
{
    const QVector<VCS_ZTAG_RECORD> records =
        VCS_ZTAG_RECORD::parse(QStringList(output.begin(), output.end()));
    for (const VCS_ZTAG_RECORD& record : records)
    {
        if (record.contains(QStringLiteral("change")))
        {
            change = record.int_value(QStringLiteral("change"));
            return change > 0;
        }
    }
    return false;
}
} // namespace

bool KOR_DB_PERFORCE::get_changelist_number(QString& error, int& changelist, const QString& path,
                                            P4_CONNECTION& connection, bool have_revision)
{
    changelist = 0;
    QVector<QString> output;
    const QStringList arguments =
        have_revision ? QStringList{QStringLiteral("-m1"), slashed(path) + QStringLiteral("#have")}
                      : QStringList{QStringLiteral("-m1"), QStringLiteral("-s"), QStringLiteral("submitted"),
                                    slashed(path)};
    if (!connection.run(QStringLiteral("changes"), arguments, output, QString(), &error))
        return false;
    if (!first_change(output, changelist))
    {
        error = QStringLiteral("%1 - no changelist found: is the file under version control?").arg(path);
        return false;
    }
    error.clear();
    return true;
}

bool KOR_DB_PERFORCE::get_file_changelist_number(int& changelist, int revision, const QString& path,
                                                 P4_CONNECTION& connection)
{
    changelist = 0;
    QVector<QString> output;
    if (!connection.run(QStringLiteral("changes"),
                        {QStringLiteral("-m1"), slashed(path) + QStringLiteral("#%1").arg(revision)}, output))
        return false;
    return first_change(output, changelist);
}

bool KOR_DB_PERFORCE::sync_file_to_revision(P4_CONNECTION& connection, const QString& path, int revision)
{
    QVector<QString> output;
    return connection.run(QStringLiteral("sync"), {slashed(path) + QStringLiteral("#%1").arg(revision)},
                          output);
}
