#pragma once

#include "kor_library_dialogs.h"

#include <QString>
#include <QStringList>

#include <functional>

class QWidget;
class DB_DIALOG_REGISTRATION_INTERFACE;
class KOR_XML_QUERY_INTERFACE;

// How the query interface makes the library's dialogs without depending on
// widgets: the widget layer installs these makers once at start-up. A maker
// that is not installed makes nothing (the create_* operations answer null).
struct KOR_LIBRARY_DIALOG_FACTORY
{
    std::function<LOCAL_DATA_CHANGES_DIALOG*(KOR_XML_QUERY_INTERFACE& query_interface, QWidget* parent,
                                             DB_DIALOG_REGISTRATION_INTERFACE* registry)>
        local_data_changes;
    std::function<SUBMISSION_DIALOG*(KOR_XML_QUERY_INTERFACE& query_interface, const QString& connect_path,
                                     QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry)>
        submission;
    std::function<SUBMISSION_DIALOG*(KOR_XML_QUERY_INTERFACE& query_interface, const QString& connect_path,
                                     const QString& first, const QString& second, const QStringList& list,
                                     QWidget* parent, DB_DIALOG_REGISTRATION_INTERFACE* registry)>
        submission_plus_data;
    std::function<REQUEST_SUBMISSION_DIALOG*(KOR_XML_QUERY_INTERFACE& query_interface, QWidget* parent,
                                             DB_DIALOG_REGISTRATION_INTERFACE* registry)>
        request_submission;

    // Replaces the installed makers (process-wide).
    static void install(const KOR_LIBRARY_DIALOG_FACTORY& factory);
    static const KOR_LIBRARY_DIALOG_FACTORY& installed();
};
