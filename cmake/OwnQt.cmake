# Builds the lean Qt for a self-contained bundle, or takes it from the cache. Debian's tools, such as moc, serve both
# builds: Qt's own and the bundle's.
if(CMAKE_CROSSCOMPILING)
    message(FATAL_ERROR "HELPER_QT=lean works for this machine's processor only. Use -D HELPER_QT=system")
endif()
execute_process(COMMAND "${PROJECT_SOURCE_DIR}/cmake/lean-qt" OUTPUT_VARIABLE own_qt
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(QT_HOST_PATH /usr)
list(PREPEND CMAKE_PREFIX_PATH "${own_qt}")
