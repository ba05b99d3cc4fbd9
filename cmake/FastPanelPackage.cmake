# The CMake packages a host finds:
#   FastPanel (Qt 5) or FastPanelQt6 (Qt 6): <package>::FastPanel, which finds the platform
#     package below for the targets it links publicly; component "development" (the library
#     itself is "runtime").
#   KorvanePlatform (Qt 5) or KorvanePlatformQt6 (Qt 6): our platform libraries,
#     Korvane::korvane, Korvane::kvWidgets and Korvane::osdu; components "platform_runtime" and
#     "platform_development", which install alone. A host-mode build finds the host's own instead
#     and installs none of it.
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

if(FASTPANEL_PLATFORM STREQUAL "bundled")
  install(EXPORT KorvanePlatformTargets
    NAMESPACE Korvane::
    DESTINATION "${FASTPANEL_PLATFORM_INSTALL_CMAKEDIR}"
    COMPONENT platform_development)
  configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/KorvanePlatformConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/${FASTPANEL_PLATFORM_PACKAGE_NAME}Config.cmake"
    INSTALL_DESTINATION "${FASTPANEL_PLATFORM_INSTALL_CMAKEDIR}")
  write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/${FASTPANEL_PLATFORM_PACKAGE_NAME}ConfigVersion.cmake"
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
  install(FILES
    "${PROJECT_BINARY_DIR}/${FASTPANEL_PLATFORM_PACKAGE_NAME}Config.cmake"
    "${PROJECT_BINARY_DIR}/${FASTPANEL_PLATFORM_PACKAGE_NAME}ConfigVersion.cmake"
    DESTINATION "${FASTPANEL_PLATFORM_INSTALL_CMAKEDIR}"
    COMPONENT platform_development)
endif()

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
