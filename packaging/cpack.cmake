# The archive of what scripts/package.sh has staged. Environment: KX_STAGE (the folder), KX_VERSION, SOURCE_DATE_EPOCH.
set(CPACK_GENERATOR External)
set(CPACK_PACKAGE_NAME KXRestore)
set(CPACK_PACKAGE_VENDOR KXRestore)
set(CPACK_PACKAGE_VERSION $ENV{KX_VERSION})
set(CPACK_PACKAGE_FILE_NAME KXRestore-$ENV{KX_VERSION})
set(CPACK_PACKAGE_DESCRIPTION "KXRestore restore dialog")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_INSTALLED_DIRECTORIES "$ENV{KX_STAGE}" /)
# CPack's own archives depend on directory order and on this machine's times.
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/archive.cmake)
