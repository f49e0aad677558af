#include "kor_query_schema.h"

KOR_QUERY_SCHEMA::KOR_QUERY_SCHEMA(const QString& query_name, const QString& statement, const QString& description)
    : m_query_name(query_name), m_statement(statement), m_description(description)
{
}

KOR_QUERY_SCHEMA::~KOR_QUERY_SCHEMA() = default;
