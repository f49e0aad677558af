# Sources of the query engine (saved queries and the simple SQL), compiled into
# kor_engine. Owned by the query work.
#
# The simple SQL reader (lexer, parser, syntax tree) is a library of its own on
# Qt Core alone, so that its tests and the fuzzer need nothing of the engine.
# The fuzzer compiles the same list again with coverage instrumentation.
set(KOR_SQL_PARSER_SOURCES
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_ast.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_lexer.cpp
  ${CMAKE_CURRENT_LIST_DIR}/kor_sql_parser.cpp)
if(NOT TARGET kor_sql_parser)
  orbin_add_library(kor_sql_parser LAYER core
    SOURCES ${KOR_SQL_PARSER_SOURCES}
    PUBLIC_INCLUDE ${CMAKE_CURRENT_LIST_DIR})
endif()

set(KOR_ENGINE_QUERY_SOURCES)
set(KOR_ENGINE_QUERY_LIBS kor_sql_parser)
