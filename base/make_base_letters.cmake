# Turns Unicode's UnicodeData.txt into rows { letter, base } for sorting.cpp: characters that decompose into another one
# and a mark on it. The base may have a base of its own.
file(STRINGS ${INPUT} lines REGEX "^[0-9A-F]+;[^;]*;[^;]*;[^;]*;[^;]*;[0-9A-F]+ [0-9A-F]+;")
set(rows "")
set(count 0)
foreach(line IN LISTS lines)
  string(REGEX MATCH "^([0-9A-F]+);[^;]*;[^;]*;[^;]*;[^;]*;([0-9A-F]+) " match "${line}")
  string(APPEND rows "{0x${CMAKE_MATCH_1}, 0x${CMAKE_MATCH_2}},\n")
  math(EXPR count "${count} + 1")
endforeach()
if(count LESS 500)
  message(FATAL_ERROR "${INPUT} does not look like Unicode's character data")
endif()
file(WRITE ${OUTPUT} "${rows}")
