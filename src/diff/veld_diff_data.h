#pragma once

#include "diff_table_scan.h"

#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>

#include <memory>

class KOR_XML_QUERY_INTERFACE;
class VELD_DIFF_SESSION;

// The comparison of two whole databases. Database 1 is the session's own
// (local) database or a copy fetched for a directory and changelist;
// database 2 is always such a copy. process_diff brings both onto disk and
// sorts every table into the groups of DIFF_TABLE_SCAN; the records of a
// table are read later, through the two query interfaces kept here, by
// VELD_TABLE_DIFF_DATA.
class VELD_DIFF_DATA : public QObject
{
    Q_OBJECT

public:
    VELD_DIFF_DATA(VELD_DIFF_SESSION* session, bool db1_is_local, bool diff_large_tables);
    ~VELD_DIFF_DATA() override;

    void set_db1_path(const QString& path) { m_db1_path = path; }
    void set_db1_changelist(const QString& changelist) { m_db1_changelist = changelist; }
    void set_db2_path(const QString& path) { m_db2_path = path; }
    void set_db2_changelist(const QString& changelist) { m_db2_changelist = changelist; }

    // True when the four groups are filled.
    bool process_diff();

    // The interfaces the records of each database are read through, opened
    // on first use; null when a copy cannot be connected (said through
    // statusUpdate). Database 1, when local, is the session's own.
    KOR_XML_QUERY_INTERFACE* db1_query_interface();
    KOR_XML_QUERY_INTERFACE* db2_query_interface();

    const QMap<QString, bool>& tables() const { return m_scan.tables(); }
    const QSet<QString>& tables_only_in_db1() const { return m_scan.tables_only_in_db1(); }
    const QSet<QString>& tables_only_in_db2() const { return m_scan.tables_only_in_db2(); }
    const QSet<QString>& tables_differing() const { return m_scan.tables_differing(); }
    const QString& db1_path() const { return m_db1_path; }
    const QString& db1_changelist() const { return m_db1_changelist; }
    const QString& db2_path() const { return m_db2_path; }
    const QString& db2_changelist() const { return m_db2_changelist; }
    // Where each database really lies once process_diff has run.
    const QString& db1_directory() const { return m_db1_directory; }
    const QString& db2_directory() const { return m_db2_directory; }
    bool db1_is_local() const { return m_db1_is_local; }
    bool diff_large_tables() const { return m_diff_large_tables; }

signals:
    void statusUpdate(QString updateString);

private:
    KOR_XML_QUERY_INTERFACE* copy_interface(std::unique_ptr<KOR_XML_QUERY_INTERFACE>& slot,
                                            const QString& directory);

    VELD_DIFF_SESSION* m_session;
    QString m_db1_path;
    QString m_db1_changelist;
    QString m_db1_directory;
    QString m_db2_path;
    QString m_db2_changelist;
    QString m_db2_directory;
    std::unique_ptr<KOR_XML_QUERY_INTERFACE> m_db1_query_interface;
    std::unique_ptr<KOR_XML_QUERY_INTERFACE> m_db2_query_interface;
    bool m_db1_is_local;
    bool m_diff_large_tables;
    DIFF_TABLE_SCAN m_scan;
};
