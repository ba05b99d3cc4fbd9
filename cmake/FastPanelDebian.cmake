# Debian packages by CPack (./dev package), one per install component:
#   runtime      fastpanel            (Qt 6: fastpanel-qt6)      the shared libraries, translations
#   development  fastpanel-dev        (Qt 6: fastpanel-qt6-dev)  headers and the CMake package
#   emulators    fastpanel-emulators  (the same for both Qts)    fast-emulator, osdu-emulator
# Their dependencies on Debian's libraries come from dpkg-shlibdeps; the development package
# also needs the -dev packages that the CMake package finds.
# Our platform libraries install as components of their own (platform_runtime,
# platform_development), so that they can be installed alone as the KorvanePlatform package; on
# Debian they travel with the panel's, grouped into the same two packages.

set(CPACK_PACKAGE_NAME "fastpanel${FASTPANEL_NAME_SUFFIX}")
set(CPACK_PACKAGE_VENDOR "The FAST panel developers")
set(CPACK_PACKAGE_CONTACT "The FAST panel developers <fastpanel@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Panel that brings VDS volumes into a host project through FAST")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_COMPONENTS_ALL runtime development emulators)
if(FASTPANEL_PLATFORM STREQUAL "bundled")
  list(APPEND CPACK_COMPONENTS_ALL platform_runtime platform_development)
endif()
foreach(component IN ITEMS runtime development)
  string(TOUPPER ${component} group)
  set(CPACK_COMPONENT_${group}_GROUP ${component})
  set(CPACK_COMPONENT_PLATFORM_${group}_GROUP ${component})
endforeach()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION "libs")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "fastpanel${FASTPANEL_NAME_SUFFIX}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME "fastpanel${FASTPANEL_NAME_SUFFIX}-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION "libdevel")
set(CPACK_DEBIAN_EMULATORS_PACKAGE_NAME "fastpanel-emulators")
set(CPACK_DEBIAN_EMULATORS_PACKAGE_SECTION "devel")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${FASTPANEL_QT_DEBIAN_DEV_PACKAGE}")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The panel's shared libraries and translations")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers and CMake package for hosts that build with the panel")
set(CPACK_COMPONENT_EMULATORS_DESCRIPTION "FAST and OSDU emulators for hosts' tests")

include(CPack)
