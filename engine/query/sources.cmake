# Sources of the query engine (saved queries and the simple SQL), compiled into
# kor_engine. Owned by the query work.
#
# The simple SQL language itself (lexer, parser, syntax tree, values, LIKE
# patterns) is a library of its own on Qt Core alone, so that its tests and
# the fuzzers need nothing of the engine. The fuzzers compile the same list
# again with coverage instrumentation.
set(KOR_SQL_SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_ast.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_lexer.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_like_pattern.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_parser.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_value.cpp)
if(NOT TARGET kor_sql)
  orbin_add_library(kor_sql LAYER core
    SOURCES ${KOR_SQL_SOURCES}
    PUBLIC_INCLUDE ${CMAKE_CURRENT_LIST_DIR})
endif()

set(KOR_ENGINE_QUERY_SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/kor_query_results.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_query_results_builder.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_query_schema.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_query_store.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_binder.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_executor.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_plan.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_xml_query_interface_queries.cpp)
set(KOR_ENGINE_QUERY_LIBS kor_sql)
