# The library, its headers, and what find_package(vornscript) and pkg-config read; the tool with its
# manual page; what editors need. And the packages that "cpack" makes of it all.
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

# Finds the rest from where it stands itself.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_dir} /)
configure_file(cmake/vornscript.pc.in ${PROJECT_BINARY_DIR}/vornscript.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vornscript.pc DESTINATION ${pkgconfig_dir})

if(TARGET vrn)
  install(TARGETS vrn)
  install(FILES ${PROJECT_BINARY_DIR}/vrn.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
endif()
install(DIRECTORY editors DESTINATION ${CMAKE_INSTALL_DATADIR}/vornscript
  PATTERN check EXCLUDE)

if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_PACKAGE_VENDOR "vornscript")
  set(CPACK_PACKAGE_CONTACT "vornscript <vornscript@localhost>")
  set(CPACK_STRIP_FILES ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ${BUILD_SHARED_LIBS})
  include(CPack)
endif()
