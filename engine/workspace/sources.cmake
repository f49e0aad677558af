# Sources of the engine's operations on a working copy (changes, merge, lock,
# submit, shelve, diff copies), compiled into kor_engine. Owned by the
# version-control work.
set(KOR_ENGINE_WORKSPACE_SOURCES
  ${KOR_ENGINE_DIR}/workspace/kor_record_merge.cpp
  ${KOR_ENGINE_DIR}/workspace/kor_merge_log.cpp
  ${KOR_ENGINE_DIR}/workspace/kor_workspace_files.cpp
  ${KOR_ENGINE_DIR}/workspace/kor_workspace_changes.cpp
  ${KOR_ENGINE_DIR}/workspace/kor_workspace_submit.cpp
  ${KOR_ENGINE_DIR}/workspace/kor_workspace_diff_copy.cpp
  ${KOR_ENGINE_DIR}/workspace/kor_workspace_merge.cpp)
set(KOR_ENGINE_WORKSPACE_LIBS orbin_vcs orbin_common)
