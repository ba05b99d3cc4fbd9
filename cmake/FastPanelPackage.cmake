# The CMake package "FastPanel": find_package(FastPanel CONFIG) gives FastPanel::FastPanel
# (and the platform targets it links publicly).

install(EXPORT FastPanelTargets
  NAMESPACE FastPanel::
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/FastPanel")

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/FastPanelConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/FastPanelConfig.cmake"
  INSTALL_DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/FastPanel")

write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/FastPanelConfigVersion.cmake"
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)

install(FILES
  "${PROJECT_BINARY_DIR}/FastPanelConfig.cmake"
  "${PROJECT_BINARY_DIR}/FastPanelConfigVersion.cmake"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/FastPanel")
