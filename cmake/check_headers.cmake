# The target check_headers compiles every header by itself, so that each includes what it uses. The native build covers
# the portable headers, the Windows builds cover theirs.
file(GLOB_RECURSE headers RELATIVE ${CMAKE_SOURCE_DIR} CONFIGURE_DEPENDS
  base/*.h bench/*.h catalog/*.h component/*.h controls/*.h dialog/*.h engine/*.h host/*.h platform/*.h tests/*.h)
string(JOIN "|" windowsHeaders
  "^component/com/(com_|class_|event_|host_|module|registration|restore_|the_form|type_|wide_)"
  "^engine/dao/(automation|dao_recordset|desktop_engine|values)"
  "^host/driver/" "^host/[^/]*$" "^platform/win32/" "^tests/(e2e|win32)/" "^tests/engine/dao_")
if(WIN32)
  list(FILTER headers INCLUDE REGEX "${windowsHeaders}")
else()
  list(FILTER headers EXCLUDE REGEX "${windowsHeaders}")
  if(NOT TARGET benches)
    list(FILTER headers EXCLUDE REGEX "^bench/")
  endif()
endif()

set(sources "")
foreach(header IN LISTS headers)
  set(source ${CMAKE_BINARY_DIR}/generated/check_headers/${header}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n" @ONLY)
  list(APPEND sources ${source})
endforeach()
add_library(check_headers OBJECT EXCLUDE_FROM_ALL ${sources})
target_link_libraries(check_headers PRIVATE kx_options kx_sqlite3 kx_odbc GTest::gtest)
if(TARGET benchmark::benchmark)
  target_link_libraries(check_headers PRIVATE benchmark::benchmark)
endif()
target_compile_options(check_headers PRIVATE -O0 -g0 $<$<BOOL:${KX_SANITIZE}>:-fno-sanitize=all>)
target_compile_definitions(check_headers PRIVATE KX_TEST_DATA="")
if(TARGET kx_idl)
  add_dependencies(check_headers kx_idl)
endif()
