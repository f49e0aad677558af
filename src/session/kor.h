#pragma once

// The whole contract of the database engine, for code that uses it broadly.
// Code of the engine itself includes the single headers it needs.

#include "agf_dependency_builder.h"
#include "case_insensitive_compare_string.h"
#include "db_dialog_registration_interface.h"
#include "kor_database_data.h"
#include "kor_database_schema.h"
#include "kor_db_file.h"
#include "kor_db_perforce.h"
#include "kor_field_data.h"
#include "kor_field_data_map.h"
#include "kor_field_schema.h"
#include "kor_field_type.h"
#include "kor_library_dialog_factory.h"
#include "kor_library_dialogs.h"
#include "kor_metafield.h"
#include "kor_query_interface.h"
#include "kor_query_results.h"
#include "kor_query_schema.h"
#include "kor_record_data.h"
#include "kor_record_map.h"
#include "kor_record_uuid_index.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_xml_query_interface.h"
#include "metafield_and_schema.h"
#include "p4_connection.h"
#include "patched_tables.h"
#include "progress_callback.h"
#include "progress_report_list.h"
#include "qt_workarounds.h"
#include "relationship_data.h"
#include "tools_metrics.h"
#include "update_command_item.h"
#include "update_command_items.h"

// The spreadsheet wrapper holds colours, which need Qt Gui.
#ifdef QT_GUI_LIB
#include "excel_object.h"
#endif
