# What a host finds after `cmake --install`: two libraries, their public headers, a CMake package
# and both programs.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/RyImageCutter)

install(TARGETS RyCore RyImageCutter EXPORT RyImageCutterTargets
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/RyImageCutter)
install(TARGETS rycut rycut-studio)
install(EXPORT RyImageCutterTargets NAMESPACE Ry:: DESTINATION ${packageDir})

configure_package_config_file(cmake/RyImageCutterConfig.cmake.in RyImageCutterConfig.cmake
    INSTALL_DESTINATION ${packageDir})
write_basic_package_version_file(RyImageCutterConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/RyImageCutterConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/RyImageCutterConfigVersion.cmake
    DESTINATION ${packageDir})
