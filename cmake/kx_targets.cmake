# Shared by all targets: warnings, sanitizers, include root.

add_library(kx_options INTERFACE)
target_include_directories(kx_options INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR}/generated)
target_compile_options(kx_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wno-missing-field-initializers)
# GCC 12 mistakes "text" + std::string() for an overlapping copy.
target_compile_options(kx_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(KX_SANITIZE)
  target_compile_options(kx_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
                                              -fno-omit-frame-pointer)
  target_link_options(kx_options INTERFACE -fsanitize=address,undefined)
endif()
if(WIN32)
  target_compile_definitions(kx_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601
                                                  WINVER=0x0601 _WIN32_IE=0x0700)
  target_link_options(kx_options INTERFACE -static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp)
endif()

# kx_library(NAME SOURCES ... LINK ...): a static library of this project.
function(kx_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC kx_options ${arg_LINK})
endfunction()
