# Configures cpack, which packs the bundle as a .tar.gz file and writes its SHA-256 to a second file. Each build
# of a commit gives the same bytes.
set(CPACK_GENERATOR External)
set(CPACK_VERBATIM_VARIABLES ON) # a company's name may contain quotes
set(CPACK_PACKAGE_NAME "${HELPER_IDENTIFIER}")
set(CPACK_PACKAGE_VENDOR "${HELPER_COMPANY_NAME}")
set(CPACK_PACKAGE_FILE_NAME
    "${HELPER_IDENTIFIER}-${HELPER_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_EXTERNAL_PACKAGE_SCRIPT "${PROJECT_SOURCE_DIR}/cmake/PackageBundle.cmake")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/cpack") # cpack's working files
set(CPACK_HELPER_DIST "${PROJECT_BINARY_DIR}/dist")
set(CPACK_EXTERNAL_ENABLE_STAGING OFF)
set(CPACK_HELPER_BUNDLE "${HELPER_BUNDLE}")
set(CPACK_INSTALL_CMAKE_PROJECTS "") # the build directory contains the bundle as it is shipped
include(CPack)
