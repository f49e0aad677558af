#pragma once

#include "kor_query_store.h"

// The query language's part of an interface's private state: what lives from
// connect to disconnect. Made on the first connect (open_queries).
class KOR_QUERY_STATE
{
public:
    KOR_QUERY_STORE saved_queries;
};
