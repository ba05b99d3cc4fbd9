# Small helpers shared by every target of the tree.

set(FASTPANEL_GENERATED_INCLUDE_DIR "${PROJECT_BINARY_DIR}/include")

# Warnings on for our own code; a warning is a bug to fix, not to silence.
function(fastpanel_warnings target)
  if(MSVC)
    # Sources are UTF-8 (the user-facing texts carry "™").
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 $<$<BOOL:${FASTPANEL_WERROR}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic $<$<BOOL:${FASTPANEL_WERROR}>:-Werror>)
  endif()
endfunction()

# A shared library of the tree: export header at <prefix>/<name>_export.h, include roots for
# the build tree and the install tree, version and install rules.
#   fastpanel_shared_library(<target> PREFIX <include-prefix> ROOT <source-include-root>)
function(fastpanel_shared_library target)
  cmake_parse_arguments(ARG "" "PREFIX;ROOT" "" ${ARGN})
  string(TOUPPER "${target}" upper)
  generate_export_header(${target}
    BASE_NAME ${upper}
    EXPORT_FILE_NAME "${FASTPANEL_GENERATED_INCLUDE_DIR}/${ARG_PREFIX}/${target}_export.h")
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${ARG_ROOT}>"
    "$<BUILD_INTERFACE:${FASTPANEL_GENERATED_INCLUDE_DIR}>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  if(UNIX AND NOT APPLE)
    # The libraries find each other in their own folder, wherever the package is installed.
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  fastpanel_warnings(${target})
  install(TARGETS ${target} EXPORT FastPanelTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY "${ARG_ROOT}/${ARG_PREFIX}/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${ARG_PREFIX}"
    FILES_MATCHING PATTERN "*.h")
  install(FILES "${FASTPANEL_GENERATED_INCLUDE_DIR}/${ARG_PREFIX}/${target}_export.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${ARG_PREFIX}")
endfunction()
