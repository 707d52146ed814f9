# kx_odbc: the machine's ODBC driver manager, unixODBC or Windows' own.
add_library(kx_odbc INTERFACE)
if(WIN32)
  target_link_libraries(kx_odbc INTERFACE odbc32)
else()
  find_library(KX_ODBC_LIBRARY odbc REQUIRED)
  target_link_libraries(kx_odbc INTERFACE ${KX_ODBC_LIBRARY})
endif()
