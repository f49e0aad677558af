#pragma once
// Owned by the query work: the rows and fields a query answers with.
class KOR_QUERY_RESULTS;
