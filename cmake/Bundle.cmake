# The bundle's layout. The build directory contains the bundle as it is shipped. platform/Bundle.cpp repeats
# this layout.
set(HELPER_BUNDLE "${PROJECT_BINARY_DIR}/Subscription Helper.app")
set(HELPER_BUNDLE_CONTENTS "${HELPER_BUNDLE}/Contents")
if(APPLE)
    set(HELPER_EXECUTABLE_DIRECTORY MacOS)
else()
    set(HELPER_EXECUTABLE_DIRECTORY Linux)
endif()
set(HELPER_BUNDLE_EXECUTABLES "${HELPER_BUNDLE_CONTENTS}/${HELPER_EXECUTABLE_DIRECTORY}")
set(HELPER_BUNDLE_FRAMEWORKS "${HELPER_BUNDLE_CONTENTS}/Frameworks")
set(HELPER_BUNDLE_RESOURCES "${HELPER_BUNDLE_CONTENTS}/Resources")
