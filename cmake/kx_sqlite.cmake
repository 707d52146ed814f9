# kx_sqlite3: the embedded database library. The system's natively; for Windows it is compiled from the source that
# scripts/setup.sh puts into build/deps, so that the DLL has no dependencies.
if(WIN32)
  set(kx_sqlite_dir ${CMAKE_SOURCE_DIR}/build/deps/sqlite)
  if(NOT EXISTS ${kx_sqlite_dir}/sqlite3.c)
    message(FATAL_ERROR "${kx_sqlite_dir}/sqlite3.c is missing: scripts/setup.sh windows fetches it")
  endif()
  add_library(kx_sqlite3 STATIC ${kx_sqlite_dir}/sqlite3.c)
  target_include_directories(kx_sqlite3 SYSTEM PUBLIC ${kx_sqlite_dir})
  target_compile_definitions(kx_sqlite3 PRIVATE
    SQLITE_THREADSAFE=2 SQLITE_OMIT_LOAD_EXTENSION SQLITE_DQS=0 SQLITE_ENABLE_COLUMN_METADATA
    SQLITE_DEFAULT_MEMSTATUS=0 SQLITE_LIKE_DOESNT_MATCH_BLOBS SQLITE_OMIT_DEPRECATED SQLITE_OMIT_SHARED_CACHE
    SQLITE_MAX_EXPR_DEPTH=1000 SQLITE_USE_ALLOCA)
  target_compile_options(kx_sqlite3 PRIVATE -O2 -w)
else()
  find_package(SQLite3 QUIET)
  kx_need(SQLite3_FOUND "SQLite 3 with its header" native)
  add_library(kx_sqlite3 INTERFACE)
  target_link_libraries(kx_sqlite3 INTERFACE SQLite::SQLite3)
endif()
