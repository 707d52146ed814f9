# kx_need(VARIABLE WHAT GROUP): stops the configuration if a find command left VARIABLE without a value. The message
# names WHAT is missing, the group of scripts/setup.sh that installs it, and the variable to set otherwise.
function(kx_need variable what group)
  if(NOT ${variable})
    string(REGEX REPLACE ".*_FOUND$" "CMAKE_PREFIX_PATH" place ${variable})
    message(FATAL_ERROR "${what} is missing. On Debian scripts/setup.sh ${group} installs it; elsewhere install it and, "
                        "if it is not found, set ${place}.")
  endif()
endfunction()

# kx_need_program(VARIABLE PROGRAM GROUP)
function(kx_need_program variable program group)
  find_program(${variable} ${program})
  kx_need(${variable} "The program ${program}" ${group})
endfunction()
