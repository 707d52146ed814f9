# kx_odbc: the ODBC driver manager: unixODBC, or the one of Windows.
add_library(kx_odbc INTERFACE)
if(WIN32)
  target_link_libraries(kx_odbc INTERFACE odbc32)
else()
  find_package(ODBC QUIET)
  kx_need(ODBC_FOUND "The ODBC driver manager (unixODBC) with its headers" native)
  target_link_libraries(kx_odbc INTERFACE ODBC::ODBC)
endif()
