# The archive of what scripts/package.sh has put together: cpack --config packaging/cpack.cmake -D KX_STAGE=FOLDER
# -D KX_VERSION=VERSION -D KX_EPOCH=SECONDS -B FOLDER
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME KXRestore)
set(CPACK_PACKAGE_VERSION ${KX_VERSION})
set(CPACK_PACKAGE_FILE_NAME KXRestore-${KX_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "KXRestore restore dialog")
set(CPACK_INSTALLED_DIRECTORIES "${KX_STAGE}" .)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
# CPack copies the files before it packs them, and an archive holds their times.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/same_times.cmake)
