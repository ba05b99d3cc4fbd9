# The CMake packages a host finds:
#   FastPanel (Qt 5) or FastPanelQt6 (Qt 6): <package>::FastPanel and the platform targets it
#     links publicly; component "development" (the libraries themselves are "runtime").
#   FastPanelEmulators: the FAST and OSDU emulators as imported programs,
#     FastPanelEmulators::fast-emulator and FastPanelEmulators::osdu-emulator, for a host's
#     tests; component "emulators". They use no Qt, so both Qt builds install the same ones.

install(EXPORT FastPanelTargets
  NAMESPACE ${FASTPANEL_PACKAGE_NAME}::
  DESTINATION "${FASTPANEL_INSTALL_CMAKEDIR}"
  COMPONENT development)

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/FastPanelConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/${FASTPANEL_PACKAGE_NAME}Config.cmake"
  INSTALL_DESTINATION "${FASTPANEL_INSTALL_CMAKEDIR}")

write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/${FASTPANEL_PACKAGE_NAME}ConfigVersion.cmake"
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)

install(FILES
  "${PROJECT_BINARY_DIR}/${FASTPANEL_PACKAGE_NAME}Config.cmake"
  "${PROJECT_BINARY_DIR}/${FASTPANEL_PACKAGE_NAME}ConfigVersion.cmake"
  DESTINATION "${FASTPANEL_INSTALL_CMAKEDIR}"
  COMPONENT development)

if(FASTPANEL_BUILD_TOOLS)
  set(emulators_cmakedir "${CMAKE_INSTALL_LIBDIR}/cmake/FastPanelEmulators")
  install(EXPORT FastPanelEmulatorsTargets
    NAMESPACE FastPanelEmulators::
    FILE FastPanelEmulatorsConfig.cmake
    DESTINATION "${emulators_cmakedir}"
    COMPONENT emulators)
  write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/FastPanelEmulatorsConfigVersion.cmake"
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/FastPanelEmulatorsConfigVersion.cmake"
    DESTINATION "${emulators_cmakedir}"
    COMPONENT emulators)
endif()
