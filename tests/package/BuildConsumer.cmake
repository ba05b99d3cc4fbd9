# Installs the build into a fresh prefix, then configures, builds and runs the consumer.
file(REMOVE_RECURSE "${WORK_DIR}")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    string(REPLACE ";" " " line "${ARGN}")
    message(FATAL_ERROR "failed (${result}): ${line}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")

# The compiled translations lie where the host integration guide says; the pseudo-locale is
# always among them.
if(NOT EXISTS "${WORK_DIR}/prefix/share/fastpanel/translations/fastpanel_en_XA.qm")
  message(FATAL_ERROR "no share/fastpanel/translations/fastpanel_en_XA.qm in the installed package")
endif()

# Only public headers are installed, and each of them compiles with the installed ones alone:
# the consumer builds one source that includes every installed header.
file(GLOB_RECURSE installed RELATIVE "${WORK_DIR}/prefix/include" "${WORK_DIR}/prefix/include/*.h")
list(FILTER installed INCLUDE REGEX "_p\\.h$")
if(installed)
  message(FATAL_ERROR "private headers installed: ${installed}")
endif()
file(GLOB_RECURSE installed RELATIVE "${WORK_DIR}/prefix/include" "${WORK_DIR}/prefix/include/*.h")
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
run(${CMAKE_COMMAND} -S "${CONSUMER_DIR}" -B "${WORK_DIR}/build" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix" "-DEVERY_HEADER_SOURCE=${WORK_DIR}/every_header.cpp"
    "-DGUIDE_SOURCE=${WORK_DIR}/guide_snippets.cpp"
    ${consumer_flags})
run(${CMAKE_COMMAND} --build "${WORK_DIR}/build")
run("${WORK_DIR}/build/consumer")
