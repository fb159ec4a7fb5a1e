# An installed package: another project writes find_package(DataViews) and links DataViews::Common.
include(CMakePackageConfigHelpers)

set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/DataViews)
install(EXPORT DataViewsTargets NAMESPACE DataViews:: DESTINATION ${packageFolder})
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/DataViewsConfig.cmake.in ${PROJECT_BINARY_DIR}/DataViewsConfig.cmake
    INSTALL_DESTINATION ${packageFolder}
)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/DataViewsConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/DataViewsConfig.cmake ${PROJECT_BINARY_DIR}/DataViewsConfigVersion.cmake
        DESTINATION ${packageFolder}
)
