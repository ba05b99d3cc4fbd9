# Small helpers shared by every target of the tree.

set(FASTPANEL_GENERATED_INCLUDE_DIR "${PROJECT_BINARY_DIR}/include")

# Warnings on for our own code; a warning is a bug to fix, not to silence.
function(fastpanel_warnings target)
  if(MSVC)
    # Sources are UTF-8 (the user-facing texts carry "™"); __cplusplus tells the standard truly,
    # as Qt's headers expect.
    target_compile_options(${target} PRIVATE /W4 /permissive- /Zc:__cplusplus /utf-8
                                             $<$<BOOL:${FASTPANEL_WERROR}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic $<$<BOOL:${FASTPANEL_WERROR}>:-Werror>)
  endif()
endfunction()

# <prefix>/<target>_export.h in the generated include root. tools/lint/windows generates the same
# headers for a Windows target, so the settings live here once.
function(fastpanel_export_header target prefix)
  string(TOUPPER "${target}" upper)
  generate_export_header(${target}
    BASE_NAME ${upper}
    EXPORT_FILE_NAME "${FASTPANEL_GENERATED_INCLUDE_DIR}/${prefix}/${target}_export.h")
endfunction()

# A shared library of the tree: export header at <prefix>/<name>_export.h, include roots for
# the build tree and the install tree, version and install rules.
#   fastpanel_shared_library(<target> PREFIX <include-prefix> ROOT <source-include-root>
#                            [EXPORT_NAME <name>] [PLATFORM] PUBLIC_HEADERS <header>...)
# PLATFORM: one of our platform libraries, which install as a package of their own (export set
# KorvanePlatformTargets, components platform_runtime and platform_development), the one a
# host-mode build of the panel finds; the panel's are FastPanelTargets, runtime and development.
# Only the PUBLIC_HEADERS (paths below <ROOT>/<PREFIX>) are installed: they are what a host may
# include. The library's other headers end in _p.h and stay in the source tree; tests and
# fuzzers reach them through the build tree's include root.
function(fastpanel_shared_library target)
  cmake_parse_arguments(ARG "PLATFORM" "PREFIX;ROOT;EXPORT_NAME" "PUBLIC_HEADERS" ${ARGN})
  set(export FastPanelTargets)
  set(component "")
  if(ARG_PLATFORM)
    set(export KorvanePlatformTargets)
    set(component platform_)
  endif()
  if(NOT ARG_PUBLIC_HEADERS)
    message(FATAL_ERROR "fastpanel_shared_library(${target}): name its PUBLIC_HEADERS")
  endif()
  fastpanel_export_header(${target} ${ARG_PREFIX})
  # MSVC warns (C4251, C4275) that an exported class holds members of std:: or template types, or
  # derives from a class that is not exported. That matters only when host and library differ in
  # compiler or runtime, which a C++ interface rules out anyway (README, "Windows"), so libraries
  # with such interfaces switch it off. Public, so that a host including our headers is spared it.
  if(MSVC)
    target_compile_options(${target} PUBLIC /wd4251 /wd4275)
  endif()
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${ARG_ROOT}>"
    "$<BUILD_INTERFACE:${FASTPANEL_GENERATED_INCLUDE_DIR}>"
    "$<INSTALL_INTERFACE:${FASTPANEL_INSTALL_INCLUDEDIR}>")
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME "${target}${FASTPANEL_NAME_SUFFIX}"
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  if(ARG_EXPORT_NAME)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${ARG_EXPORT_NAME})
  endif()
  if(UNIX AND NOT APPLE)
    # The libraries find each other in their own folder, wherever the package is installed.
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  fastpanel_warnings(${target})
  install(TARGETS ${target} EXPORT ${export}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component}runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component}runtime
      NAMELINK_COMPONENT ${component}development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component}development)
  foreach(header IN LISTS ARG_PUBLIC_HEADERS)
    if(header MATCHES "_p\\.h$")
      message(FATAL_ERROR "${target}: ${header} is private (_p.h) and cannot be installed")
    endif()
    get_filename_component(folder "${ARG_PREFIX}/${header}" DIRECTORY)
    install(FILES "${ARG_ROOT}/${ARG_PREFIX}/${header}" DESTINATION "${FASTPANEL_INSTALL_INCLUDEDIR}/${folder}"
      COMPONENT ${component}development)
  endforeach()
  install(FILES "${FASTPANEL_GENERATED_INCLUDE_DIR}/${ARG_PREFIX}/${target}_export.h"
    DESTINATION "${FASTPANEL_INSTALL_INCLUDEDIR}/${ARG_PREFIX}" COMPONENT ${component}development)
endfunction()

# fastpanel_add_test(NAME <name> COMMAND <program-or-target> [args...]
#                    [LABELS ...] [ENVIRONMENT ...] [TIMEOUT s] [PROPERTIES ...])
# Every test of the tree is added here: it runs headless, through tests/run-in-own-folders.sh,
# with HOME, the XDG folders and TMPDIR of its own, fresh for each run and removed after it.
function(fastpanel_add_test)
  cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "COMMAND;LABELS;ENVIRONMENT;PROPERTIES" ${ARGN})
  list(POP_FRONT ARG_COMMAND program)
  if(TARGET ${program})
    set(program "$<TARGET_FILE:${program}>")
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  add_test(NAME ${ARG_NAME}
    COMMAND "${PROJECT_SOURCE_DIR}/tests/run-in-own-folders.sh" "${program}" ${ARG_COMMAND})
  set(environment QT_QPA_PLATFORM=offscreen ${ARG_ENVIRONMENT})
  set_tests_properties(${ARG_NAME} PROPERTIES
    ENVIRONMENT "${environment}"
    LABELS "${ARG_LABELS}"
    TIMEOUT ${ARG_TIMEOUT}
    ${ARG_PROPERTIES})
endfunction()
