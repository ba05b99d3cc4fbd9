cmake_minimum_required(VERSION 3.25)
# Fails when the committed template lacks a text that the code has: lupdate writes a fresh
# template from the code into WORK_DIR, and each of its texts must be in the committed one under
# the same context. ./dev i18n brings the template up to date.
#   cmake -DLUPDATE=<lupdate> -DSOURCE_DIR=<source root> -DTEMPLATE=<fastpanel.ts> [-DWORK_DIR=<dir>]
#         -P CheckTemplate.cmake
# WORK_DIR defaults to a folder in TMPDIR, which ctest gives each test of its own.

if(NOT WORK_DIR)
  set(WORK_DIR "$ENV{TMPDIR}/template-check")
endif()
set(committed "${TEMPLATE}")
set(TEMPLATE "${WORK_DIR}/fastpanel.ts")
file(REMOVE "${TEMPLATE}")
file(MAKE_DIRECTORY "${WORK_DIR}")
include("${CMAKE_CURRENT_LIST_DIR}/UpdateTemplate.cmake")

# "context|text" of every message in file, as escaped in the .ts. Semicolons and brackets would
# split or glue CMake's list items: they travel as placeholders.
function(messages_of file result)
  file(READ "${file}" ts)
  string(REPLACE ";" "@SEMICOLON@" ts "${ts}")
  string(REPLACE "[" "@OPEN@" ts "${ts}")
  string(REPLACE "]" "@CLOSE@" ts "${ts}")
  string(REGEX MATCHALL "<name>[^<]*</name>|<source>[^<]*</source>" tokens "${ts}")
  set(messages "")
  foreach(token IN LISTS tokens)
    if(token MATCHES "^<name>(.*)</name>$")
      set(context "${CMAKE_MATCH_1}")
    elseif(token MATCHES "^<source>(.*)</source>$")
      list(APPEND messages "${context}|${CMAKE_MATCH_1}")
    endif()
  endforeach()
  set(${result} "${messages}" PARENT_SCOPE)
endfunction()

messages_of("${committed}" known)
messages_of("${TEMPLATE}" wanted)
set(missing "")
foreach(message IN LISTS wanted)
  if(NOT message IN_LIST known)
    string(REPLACE "@SEMICOLON@" ";" message "${message}")
    string(REPLACE "@OPEN@" "[" message "${message}")
    string(REPLACE "@CLOSE@" "]" message "${message}")
    string(REPLACE "|" ": " message "${message}")
    string(APPEND missing "\n  ${message}")
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "${committed} lacks texts that the code has; run ./dev i18n and commit the template:${missing}")
endif()
list(LENGTH wanted count)
message(STATUS "the template holds all ${count} texts of the code")
