# The archive of what scripts/package.sh has put together. The environment says what: KX_STAGE (the folder), KX_VERSION and
# SOURCE_DATE_EPOCH.
set(CPACK_GENERATOR External)
set(CPACK_PACKAGE_NAME KXRestore)
set(CPACK_PACKAGE_VENDOR KXRestore)
set(CPACK_PACKAGE_VERSION $ENV{KX_VERSION})
set(CPACK_PACKAGE_FILE_NAME KXRestore-$ENV{KX_VERSION})
set(CPACK_PACKAGE_DESCRIPTION "KXRestore restore dialog")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_INSTALLED_DIRECTORIES "$ENV{KX_STAGE}" /)
# CPack's own archives hold the files in the order of their folder and with times of this machine.
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/archive.cmake)
