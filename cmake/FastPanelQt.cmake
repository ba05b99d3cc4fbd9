# The Qt the tree builds against, chosen by FASTPANEL_QT_MAJOR_VERSION, and the names that let a
# Qt 6 build install beside a Qt 5 one (as Qt 6 builds of KDE Frameworks and of other Qt
# libraries do): the Qt 5 build keeps the names hosts use today; the Qt 6 build's package,
# libraries, headers and data folder carry "Qt6" / "-qt6". The tree links Qt's versionless
# targets (Qt::Core, ...), which Qt 5.15 and Qt 6 both provide.

if(FASTPANEL_QT_MAJOR_VERSION STREQUAL "5")
  set(FASTPANEL_QT_MINIMUM_VERSION 5.15)
  set(FASTPANEL_PACKAGE_NAME FastPanel)
  set(FASTPANEL_PLATFORM_PACKAGE_NAME KorvanePlatform)
  set(FASTPANEL_NAME_SUFFIX "")
  # The Qt 5 build's headers lie at the top of the prefix, as they always have.
  set(FASTPANEL_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
  # The Debian package a host needs to build against this Qt.
  set(FASTPANEL_QT_DEBIAN_DEV_PACKAGE qtbase5-dev)
elseif(FASTPANEL_QT_MAJOR_VERSION STREQUAL "6")
  set(FASTPANEL_QT_MINIMUM_VERSION 6.2)
  set(FASTPANEL_PACKAGE_NAME FastPanelQt6)
  set(FASTPANEL_PLATFORM_PACKAGE_NAME KorvanePlatformQt6)
  set(FASTPANEL_NAME_SUFFIX "-qt6")
  set(FASTPANEL_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/FastPanelQt6")
  set(FASTPANEL_QT_DEBIAN_DEV_PACKAGE qt6-base-dev)
else()
  message(FATAL_ERROR "FASTPANEL_QT_MAJOR_VERSION is 5 or 6, not '${FASTPANEL_QT_MAJOR_VERSION}'")
endif()

# Svg for the icon renderer, whose PNGs the libraries embed.
find_package(Qt${FASTPANEL_QT_MAJOR_VERSION} ${FASTPANEL_QT_MINIMUM_VERSION} REQUIRED
  COMPONENTS Core Gui Widgets Network Svg)

set(FASTPANEL_INSTALL_DATADIR "${CMAKE_INSTALL_DATADIR}/fastpanel${FASTPANEL_NAME_SUFFIX}")
set(FASTPANEL_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/${FASTPANEL_PACKAGE_NAME}")
set(FASTPANEL_PLATFORM_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/${FASTPANEL_PLATFORM_PACKAGE_NAME}")
