# Both Qt builds installed into one prefix: no file of one is overwritten by the other (the
# emulators, which use no Qt, are the same file in both), and an outside project finds the
# package of its Qt there, builds and runs.
#   cmake -DBUILD_QT5=<dir> -DBUILD_QT6=<dir> -DWORK_DIR=<dir> -DCONSUMER_DIR=<dir> -P SideBySide.cmake
file(REMOVE_RECURSE "${WORK_DIR}")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_QUIET)
  if(NOT result EQUAL 0)
    string(REPLACE ";" " " line "${ARGN}")
    message(FATAL_ERROR "failed (${result}): ${line}")
  endif()
endfunction()

set(prefix "${WORK_DIR}/prefix")
foreach(build IN ITEMS "${BUILD_QT5}" "${BUILD_QT6}")
  run(${CMAKE_COMMAND} --install "${build}" --prefix "${prefix}")
  file(STRINGS "${build}/install_manifest.txt" "installed_by_${build}")
endforeach()
foreach(file IN LISTS "installed_by_${BUILD_QT5}")
  list(FIND "installed_by_${BUILD_QT6}" "${file}" found)
  if(found GREATER -1 AND NOT file MATCHES "^${prefix}/(bin/[a-z-]+-emulator|lib/cmake/FastPanelEmulators/.*)$")
    message(FATAL_ERROR "both Qt builds install ${file}")
  endif()
endforeach()

foreach(package IN ITEMS FastPanel FastPanelQt6)
  run(${CMAKE_COMMAND} -S "${CONSUMER_DIR}" -B "${WORK_DIR}/${package}" -G Ninja
      "-DCMAKE_PREFIX_PATH=${prefix}" "-DPACKAGE=${package}")
  run(${CMAKE_COMMAND} --build "${WORK_DIR}/${package}")
  run("${WORK_DIR}/${package}/consumer")
endforeach()
message(STATUS "Qt 5 and Qt 6 packages side by side in ${prefix}: no clash, each found by its own")
