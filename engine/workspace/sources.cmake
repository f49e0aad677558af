# Sources of the engine's operations on a working copy (changes, merge, lock,
# submit, shelve, diff copies), compiled into kor_engine. Owned by the
# version-control work.
set(KOR_ENGINE_WORKSPACE_SOURCES)
set(KOR_ENGINE_WORKSPACE_LIBS)
