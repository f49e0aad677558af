# Sources of the engine proper (the data classes of the contract and the XML
# database), shared by the engine library and the fuzz targets, which compile
# them again with coverage instrumentation.
set(KOR_SESSION_DIR ${CMAKE_SOURCE_DIR}/src/session)
set(KOR_ENGINE_DIR ${CMAKE_SOURCE_DIR}/engine)
set(KOR_ENGINE_SOURCES
  ${KOR_ENGINE_DIR}/data/agf_dependency_builder.cpp
  ${KOR_ENGINE_DIR}/data/case_insensitive_compare_string.cpp
  ${KOR_ENGINE_DIR}/data/kor_database_data.cpp
  ${KOR_ENGINE_DIR}/data/kor_database_schema.cpp
  ${KOR_ENGINE_DIR}/data/kor_field_data.cpp
  ${KOR_ENGINE_DIR}/data/kor_field_data_map.cpp
  ${KOR_ENGINE_DIR}/data/kor_field_schema.cpp
  ${KOR_ENGINE_DIR}/data/kor_library_dialog_factory.cpp
  ${KOR_ENGINE_DIR}/data/kor_record_data.cpp
  ${KOR_ENGINE_DIR}/data/kor_record_map.cpp
  ${KOR_ENGINE_DIR}/data/kor_record_uuid_index.cpp
  ${KOR_ENGINE_DIR}/data/kor_table_data.cpp
  ${KOR_ENGINE_DIR}/data/kor_table_schema.cpp
  ${KOR_ENGINE_DIR}/data/patched_tables.cpp
  ${KOR_ENGINE_DIR}/data/progress_report_list.cpp
  ${KOR_ENGINE_DIR}/data/tools_metrics.cpp
  ${KOR_ENGINE_DIR}/data/update_command_items.cpp
  ${KOR_ENGINE_DIR}/kor_file_commit.cpp
  ${KOR_ENGINE_DIR}/kor_memory_pool.cpp
  ${KOR_ENGINE_DIR}/kor_permissions.cpp
  ${KOR_ENGINE_DIR}/kor_table_io.cpp
  ${KOR_ENGINE_DIR}/kor_unique_ids.cpp
  ${KOR_ENGINE_DIR}/kor_update_command_codec.cpp
  ${KOR_ENGINE_DIR}/kor_value_text.cpp
  ${KOR_ENGINE_DIR}/kor_xml_lookups.cpp
  ${KOR_ENGINE_DIR}/kor_xml_output.cpp
  ${KOR_ENGINE_DIR}/kor_xml_query_interface.cpp
  ${KOR_ENGINE_DIR}/kor_xml_records.cpp
  ${KOR_ENGINE_DIR}/kor_xml_schema.cpp
  ${KOR_ENGINE_DIR}/kor_xml_transactions.cpp
  # Listed so that moc sees the interface's signals.
  ${KOR_SESSION_DIR}/kor_xml_query_interface.h)
