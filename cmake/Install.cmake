# Installs storectl and the store client as a library for other programs, which call
# find_package(SubscriptionStore) and link SubscriptionStore::store. The bundle is packaged by cpack instead.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/SubscriptionStore")
install(TARGETS base fetch store script-url EXPORT SubscriptionStoreTargets)
foreach(folder base store)
    install(DIRECTORY ${folder}/ DESTINATION include/subscription-store/${folder}
        FILES_MATCHING PATTERN "*.h")
endforeach()
install(EXPORT SubscriptionStoreTargets NAMESPACE SubscriptionStore::
    DESTINATION ${package_directory})
configure_package_config_file(cmake/SubscriptionStoreConfig.cmake.in
    "${PROJECT_BINARY_DIR}/SubscriptionStoreConfig.cmake"
    INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/SubscriptionStoreConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/SubscriptionStoreConfig.cmake"
    "${PROJECT_BINARY_DIR}/SubscriptionStoreConfigVersion.cmake"
    DESTINATION ${package_directory})
install(TARGETS storectl)
install(FILES tools/storectl.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
set(completions "${PROJECT_BINARY_DIR}/tools/completion")
install(FILES ${completions}.bash RENAME storectl
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
install(FILES ${completions}.zsh RENAME _storectl
    DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
install(FILES ${completions}.fish RENAME storectl.fish
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
