# Installs the library, its public headers, the package for find_package(Base) and the pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS Base EXPORT BaseTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(header IN LISTS headers)
  cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${CMAKE_SOURCE_DIR}/src/Components OUTPUT_VARIABLE relative)
  cmake_path(GET relative PARENT_PATH folder)
  install(FILES ${header} DESTINATION include/${folder})
endforeach()

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Base)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/BaseConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/BaseConfig.cmake
  INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/BaseConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(EXPORT BaseTargets NAMESPACE Base:: DESTINATION ${package})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/BaseConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/BaseConfigVersion.cmake
  DESTINATION ${package})
configure_file(${CMAKE_SOURCE_DIR}/cmake/Base.pc.in ${CMAKE_CURRENT_BINARY_DIR}/Base.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/Base.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
