# The store client as a library for other programs: find_package(SubscriptionHelper), then link
# SubscriptionHelper::store. The bundle is not installed: it is shipped from the build folder.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/SubscriptionHelper")
install(TARGETS platform store EXPORT SubscriptionHelperTargets)
foreach(folder platform store)
    install(DIRECTORY ${folder}/ DESTINATION include/subscription-helper/${folder}
        FILES_MATCHING PATTERN "*.h")
endforeach()
install(EXPORT SubscriptionHelperTargets NAMESPACE SubscriptionHelper::
    DESTINATION ${package_directory})
configure_package_config_file(cmake/SubscriptionHelperConfig.cmake.in
    "${PROJECT_BINARY_DIR}/SubscriptionHelperConfig.cmake"
    INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/SubscriptionHelperConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/SubscriptionHelperConfig.cmake"
    "${PROJECT_BINARY_DIR}/SubscriptionHelperConfigVersion.cmake"
    DESTINATION ${package_directory})
install(TARGETS storectl)
