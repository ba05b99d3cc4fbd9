# Installs the build into a fresh prefix (with DEBIAN_PACKAGES: makes the build's Debian
# packages and unpacks them into a scratch root), then configures, builds and runs the consumer.
# WORK_DIR defaults to a folder in TMPDIR, which ctest gives each test of its own.
if(NOT WORK_DIR)
  set(WORK_DIR "$ENV{TMPDIR}/package")
endif()
file(REMOVE_RECURSE "${WORK_DIR}")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    string(REPLACE ";" " " line "${ARGN}")
    message(FATAL_ERROR "failed (${result}): ${line}")
  endif()
endfunction()

if(DEBIAN_PACKAGES)
  # cpack sits beside cmake; each package is unpacked as dpkg would lay it out.
  get_filename_component(cmake_bin "${CMAKE_COMMAND}" DIRECTORY)
  run("${cmake_bin}/cpack" -G DEB --config "${BUILD_DIR}/CPackConfig.cmake" -B "${WORK_DIR}/debs")
  file(GLOB debs "${WORK_DIR}/debs/*.deb")
  foreach(expected IN ITEMS "${PACKAGE_FILE_PREFIX}_" "${PACKAGE_FILE_PREFIX}-dev_" "fastpanel-emulators_")
    if(NOT debs MATCHES "/${expected}[^/]*\\.deb")
      message(FATAL_ERROR "no package ${expected}*.deb among: ${debs}")
    endif()
  endforeach()
  foreach(deb IN LISTS debs)
    run(dpkg-deb -x "${deb}" "${WORK_DIR}/root")
  endforeach()
  file(RENAME "${WORK_DIR}/root/usr" "${WORK_DIR}/prefix")
else()
  run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")
endif()

# The compiled translations lie where the host integration guide says; the pseudo-locale is
# always among them.
if(NOT EXISTS "${WORK_DIR}/prefix/${DATA_DIR}/translations/fastpanel_en_XA.qm")
  message(FATAL_ERROR "no ${DATA_DIR}/translations/fastpanel_en_XA.qm in the installed package")
endif()

# Only public headers are installed, and each of them compiles with the installed ones alone:
# the consumer builds one source that includes every installed header.
file(GLOB_RECURSE installed RELATIVE "${WORK_DIR}/prefix/${INCLUDE_DIR}" "${WORK_DIR}/prefix/${INCLUDE_DIR}/*.h")
list(FILTER installed INCLUDE REGEX "_p\\.h$")
if(installed)
  message(FATAL_ERROR "private headers installed: ${installed}")
endif()
file(GLOB_RECURSE installed RELATIVE "${WORK_DIR}/prefix/${INCLUDE_DIR}" "${WORK_DIR}/prefix/${INCLUDE_DIR}/*.h")

# A host needs no more than the package says: POCO stays inside the library (no installed header
# includes it, the package neither finds nor links it), and the target brings the C++ standard
# its headers need, since the consumer sets none.
file(GLOB_RECURSE package_files "${WORK_DIR}/prefix/*.h" "${WORK_DIR}/prefix/*.cmake")
set(package_text "")
foreach(file IN LISTS package_files)
  file(READ "${file}" text)
  string(APPEND package_text "${text}")
endforeach()
if(package_text MATCHES "(#include <|INTERFACE_LINK_LIBRARIES \"[^\"]*|find_dependency\\()Poco"
   OR NOT package_text MATCHES "INTERFACE_COMPILE_FEATURES \"cxx_std_17\"")
  message(FATAL_ERROR "the installed package asks a host for POCO, or does not bring C++17")
endif()

set(every_header "// Written by the package test: every installed header, each included once.\n")
foreach(header IN LISTS installed)
  string(APPEND every_header "#include <${header}>\n")
endforeach()
file(WRITE "${WORK_DIR}/every_header.cpp" "${every_header}")

# The host integration guide's C++ blocks, in order, are one source file of a small host: it
# must compile against the installed package as the guide shows it.
file(READ "${GUIDE}" guide)
# Semicolons would split CMake's lists: they travel as a placeholder.
string(REPLACE ";" "@SEMICOLON@" guide "${guide}")
string(REGEX MATCHALL "```cpp\n[^`]*```" blocks "${guide}")
# The host's test with the emulator is a program of its own, in a block marked "cpp host-test".
string(REGEX MATCH "```cpp host-test\n[^`]*```" host_test "${guide}")
if(NOT host_test)
  message(FATAL_ERROR "the guide ${GUIDE} holds no host-test block")
endif()
string(REGEX REPLACE "^```cpp host-test\n" "" host_test "${host_test}")
string(REGEX REPLACE "```$" "" host_test "${host_test}")
string(REPLACE "@SEMICOLON@" ";" host_test "${host_test}")
file(WRITE "${WORK_DIR}/host_test.cpp" "${host_test}")
list(LENGTH blocks block_count)
if(block_count LESS 5)
  message(FATAL_ERROR "the guide ${GUIDE} holds ${block_count} C++ blocks, expected its host's")
endif()
set(snippets "// Written by the package test from ${GUIDE}.\n")
foreach(block IN LISTS blocks)
  string(REGEX REPLACE "^```cpp\n" "" block "${block}")
  string(REGEX REPLACE "```$" "" block "${block}")
  string(APPEND snippets "${block}\n")
endforeach()
string(REPLACE "@SEMICOLON@" ";" snippets "${snippets}")
file(WRITE "${WORK_DIR}/guide_snippets.cpp" "${snippets}")
# A sanitized library needs its runtime loaded first, so the consumer is built the same way.
set(consumer_flags "")
if(SANITIZE)
  set(consumer_flags "-DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE}")
endif()
# build_and_run_consumer(<build-dir> <prefix-path> [cmake options...])
function(build_and_run_consumer build prefix_path)
  # Through an initial cache: run() would split a list of prefixes into arguments.
  file(WRITE "${build}-prefixes.cmake" "set(CMAKE_PREFIX_PATH \"${prefix_path}\" CACHE STRING \"\")\n")
  run(${CMAKE_COMMAND} -S "${CONSUMER_DIR}" -B "${build}" -G "${GENERATOR}" -C "${build}-prefixes.cmake"
      "-DEVERY_HEADER_SOURCE=${WORK_DIR}/every_header.cpp"
      "-DGUIDE_SOURCE=${WORK_DIR}/guide_snippets.cpp" "-DHOST_TEST_SOURCE=${WORK_DIR}/host_test.cpp"
      "-DPACKAGE=${PACKAGE}"
      ${consumer_flags} ${ARGN})
  run(${CMAKE_COMMAND} --build "${build}")
  run(${consumer_launcher} "${build}/consumer")
  # The host's test starts the installed FAST emulator, as the guide shows.
  run(${consumer_launcher} "${build}/host_test")
endfunction()
build_and_run_consumer("${WORK_DIR}/build" "${WORK_DIR}/prefix")

if(DEBIAN_PACKAGES OR SANITIZE)
  return()
endif()

# Host mode: our platform libraries installed alone stand in for the host's; the panel is built
# against them as a host builds it (guide, "With the host's own libraries") into a prefix of its
# own, and the same consumer runs with both prefixes (the emulators come from the full install).
set(platform "${WORK_DIR}/platform")
foreach(component IN ITEMS platform_runtime platform_development)
  run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --component ${component} --prefix "${platform}")
endforeach()
file(GLOB_RECURSE panel_files "${platform}/*fastpanel*" "${platform}/*FastPanel*")
if(panel_files OR NOT EXISTS "${platform}/${LIB_DIR}/cmake/${PLATFORM_PACKAGE}/${PLATFORM_PACKAGE}Config.cmake")
  message(FATAL_ERROR "the platform components install no ${PLATFORM_PACKAGE} package, or more than it: ${panel_files}")
endif()
string(REPLACE "|" ";" host_build_options "${HOST_BUILD_OPTIONS}")
# Its compile database gives the compiler's view of what the panel uses of the platform (below).
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}" -B "${WORK_DIR}/host-mode" -G "${GENERATOR}" -DFASTPANEL_PLATFORM=host
    "-DCMAKE_PREFIX_PATH=${platform}" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON ${host_build_options})
run(${CMAKE_COMMAND} --build "${WORK_DIR}/host-mode")
run(${CMAKE_COMMAND} --install "${WORK_DIR}/host-mode" --prefix "${WORK_DIR}/host-panel")
file(GLOB_RECURSE bundled "${WORK_DIR}/host-panel/*korvane*" "${WORK_DIR}/host-panel/*osdu*"
  "${WORK_DIR}/host-panel/*kvwidgets*" "${WORK_DIR}/host-panel/*Korvane*")
if(bundled)
  message(FATAL_ERROR "the host-mode panel installs platform files of its own: ${bundled}")
endif()
# The installed panel finds its platform libraries where the host's process finds its own, which
# for these programs is the loader's path.
set(consumer_launcher ${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${platform}/${LIB_DIR}")
build_and_run_consumer("${WORK_DIR}/host-mode-consumer" "${WORK_DIR}/host-panel;${platform}"
  "-DFastPanelEmulators_DIR=${WORK_DIR}/prefix/${LIB_DIR}/cmake/FastPanelEmulators")

# The guide's list of the platform operations that the panel calls is the host-mode panel's.
if(CMAKE_HOST_UNIX AND NOT CMAKE_HOST_APPLE)
  file(GLOB panel_library "${WORK_DIR}/host-mode/fast/lib*.so")
  file(GLOB platform_libraries "${platform}/${LIB_DIR}/lib*.so")
  run("${PYTHON}" "${SOURCE_DIR}/tools/platform-operations/operations.py" --panel ${panel_library}
      --platform ${platform_libraries} --sources "${WORK_DIR}/host-mode"
      --panel-dir "${SOURCE_DIR}/fast" "${WORK_DIR}/host-mode/fast" --platform-include "${platform}/${INCLUDE_DIR}"
      --check "${SOURCE_DIR}/docs/platform-operations.md")
endif()
