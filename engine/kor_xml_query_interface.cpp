#include "kor_xml_query_interface.h"

#include "kor_xml_query_interface_p.h"

KOR_XML_QUERY_INTERFACE::KOR_XML_QUERY_INTERFACE(PROGRESS_CALLBACK*, const QString&, bool, bool)
    : d(new KOR_XML_QUERY_INTERFACE_PRIVATE)
{
}

KOR_XML_QUERY_INTERFACE::~KOR_XML_QUERY_INTERFACE() = default;

QString KOR_XML_QUERY_INTERFACE::create_empty_database(const QString&)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::connect_for_diff(const QString&)
{
    return QStringLiteral("The engine is not available yet");
}

QString KOR_XML_QUERY_INTERFACE::original_connect_string() const
{
    return QString();
}
