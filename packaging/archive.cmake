# Makes a reproducible ZIP of the files that CPack has staged: sorted by name, with modification times but no owners or
# access times.
file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${CPACK_TEMPORARY_DIRECTORY} ${CPACK_TEMPORARY_DIRECTORY}/*)
list(SORT files)
list(TRANSFORM files PREPEND ${CPACK_PACKAGE_FILE_NAME}/)
list(JOIN files "\n" list)
file(WRITE ${CPACK_TOPLEVEL_DIRECTORY}/files.txt "${list}\n")
get_filename_component(parent ${CPACK_TEMPORARY_DIRECTORY} DIRECTORY)
execute_process(
  COMMAND zip -q -X -9 ${CPACK_PACKAGE_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}.zip -@
  INPUT_FILE ${CPACK_TOPLEVEL_DIRECTORY}/files.txt
  WORKING_DIRECTORY ${parent} COMMAND_ERROR_IS_FATAL ANY)
