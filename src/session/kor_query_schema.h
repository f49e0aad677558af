#pragma once
// Owned by the query work: the definition of one saved query.
class KOR_QUERY_SCHEMA;
