# What all targets share: warnings, sanitizers, include root.

add_library(kx_options INTERFACE)
target_include_directories(kx_options INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR}/generated)
target_compile_options(kx_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wno-missing-field-initializers)
# GCC 12 takes "text" + std::string() for an overlapping copy.
target_compile_options(kx_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(KX_SANITIZE)
  target_compile_options(kx_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
                                              -fno-omit-frame-pointer)
  target_link_options(kx_options INTERFACE -fsanitize=address,undefined)
endif()
if(WIN32)
  target_compile_definitions(kx_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601
                                                  WINVER=0x0601 _WIN32_IE=0x0700)
  target_link_options(kx_options INTERFACE -static -static-libgcc -static-libstdc++)
endif()

# Leaves out the sources that are not written yet, so that one half-written folder does not keep the others from being
# configured; what is missing shows at linking.
function(kx_existing_sources result)
  set(found)
  foreach(source ${ARGN})
    get_source_file_property(generated ${source} GENERATED)
    if(generated OR IS_ABSOLUTE ${source} OR EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${source})
      list(APPEND found ${source})
    else()
      message(WARNING "${CMAKE_CURRENT_SOURCE_DIR}/${source} does not exist and is left out")
    endif()
  endforeach()
  if(NOT found)
    set(found ${CMAKE_BINARY_DIR}/generated/empty.cpp)
    if(NOT EXISTS ${found})
      file(WRITE ${found} "")
    endif()
  endif()
  set(${result} ${found} PARENT_SCOPE)
endfunction()

# kx_library(NAME SOURCES ... LINK ...): a static library of this project.
function(kx_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  kx_existing_sources(sources ${arg_SOURCES})
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC kx_options ${arg_LINK})
endfunction()
