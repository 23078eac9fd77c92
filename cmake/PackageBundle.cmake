# Packs the bundle when cpack runs this script. All times in the archive are SOURCE_DATE_EPOCH if it is set,
# otherwise the commit's time.
set(epoch "$ENV{SOURCE_DATE_EPOCH}")
if(NOT epoch)
    execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY "${CMAKE_CURRENT_LIST_DIR}"
        OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT epoch MATCHES "^[0-9]+$")
    message(FATAL_ERROR "Cannot date the package outside a git checkout. Set SOURCE_DATE_EPOCH to the release's time")
endif()

get_filename_component(folder "${CPACK_HELPER_BUNDLE}" DIRECTORY)
get_filename_component(name "${CPACK_HELPER_BUNDLE}" NAME)
file(REMOVE_RECURSE "${CPACK_HELPER_DIST}")
file(MAKE_DIRECTORY "${CPACK_HELPER_DIST}")
set(archive "${CPACK_HELPER_DIST}/${CPACK_PACKAGE_FILE_NAME}.tar")
execute_process(COMMAND_ERROR_IS_FATAL ANY
    COMMAND tar --create --format=gnu --sort=name --mtime=@${epoch} --owner=0 --group=0
            --numeric-owner --mode=u+rwX,go+rX,go-w "--file=${archive}" "--directory=${folder}" "${name}")
execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND gzip --force --best --no-name "${archive}")
file(SHA256 "${archive}.gz" sum)
file(WRITE "${archive}.gz.sha256" "${sum}  ${CPACK_PACKAGE_FILE_NAME}.tar.gz\n")
message(STATUS "Package: ${archive}.gz")
