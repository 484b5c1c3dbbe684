# The library, its headers, and what find_package(vornscript) reads.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vornscript)

install(TARGETS vornscript EXPORT vornscript INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/vornscript DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT vornscript NAMESPACE vornscript:: FILE vornscript-targets.cmake
  DESTINATION ${package_dir})

write_basic_package_version_file(${PROJECT_BINARY_DIR}/vornscript-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  cmake/vornscript-config.cmake
  ${PROJECT_BINARY_DIR}/vornscript-config-version.cmake
  DESTINATION ${package_dir})
