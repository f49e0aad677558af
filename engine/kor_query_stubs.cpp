// Temporary definitions of the query members of the interface, until the
// query language lands in engine/query; the query work deletes this file then.
// They are weak so that real definitions win should both be linked.

#include "kor_xml_query_interface.h"

#define KOR_TEMPORARY __attribute__((weak))

namespace
{
const char* const NOT_AVAILABLE = "Queries are not available yet";
}

KOR_TEMPORARY QMap<QString, KOR_QUERY_SCHEMA*> KOR_XML_QUERY_INTERFACE::get_query_schemas() const
{
    return QMap<QString, KOR_QUERY_SCHEMA*>();
}

KOR_TEMPORARY KOR_QUERY_SCHEMA* KOR_XML_QUERY_INTERFACE::get_query_schema(const QString&) const
{
    return nullptr;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::get_query_data(QString& error, KOR_QUERY_RESULTS&,
                                                           const QString&) const
{
    error = QString::fromLatin1(NOT_AVAILABLE);
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::get_query_data_from_string(QString& error, KOR_QUERY_RESULTS&,
                                                                       const QString&) const
{
    error = QString::fromLatin1(NOT_AVAILABLE);
    return false;
}

KOR_TEMPORARY bool KOR_XML_QUERY_INTERFACE::get_query_data_from_simple_sql(QString& error, KOR_QUERY_RESULTS&,
                                                                           const QString&) const
{
    error = QString::fromLatin1(NOT_AVAILABLE);
    return false;
}
