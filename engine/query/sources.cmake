# Sources of the query engine (saved queries and the simple SQL), compiled into
# kor_engine. Owned by the query work.
set(KOR_ENGINE_QUERY_SOURCES)
set(KOR_ENGINE_QUERY_LIBS)
