# Included into the top-level project by ./dev mutate (CMAKE_PROJECT_INCLUDE): once every target
# exists, the libraries under fast/ and platform/ are compiled with gcov's counters, so that one
# run of each test tells which of their lines it executes. Tests and tools are not instrumented,
# and so still compile from the cache that the ordinary build filled.

function(fastpanel_mutate_collect_targets dir out)
  get_property(targets DIRECTORY "${dir}" PROPERTY BUILDSYSTEM_TARGETS)
  get_property(subdirs DIRECTORY "${dir}" PROPERTY SUBDIRECTORIES)
  foreach(subdir IN LISTS subdirs)
    fastpanel_mutate_collect_targets("${subdir}" sub_targets)
    list(APPEND targets ${sub_targets})
  endforeach()
  set(${out} ${targets} PARENT_SCOPE)
endfunction()

function(fastpanel_mutate_instrument)
  foreach(root IN ITEMS fast platform)
    fastpanel_mutate_collect_targets("${PROJECT_SOURCE_DIR}/${root}" targets)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      if(type STREQUAL "SHARED_LIBRARY")
        target_compile_options(${target} PRIVATE --coverage)
        target_link_options(${target} PRIVATE --coverage)
      elseif(type MATCHES "^(STATIC|OBJECT)_LIBRARY$")
        target_compile_options(${target} PRIVATE --coverage)
        target_link_options(${target} INTERFACE --coverage)
      endif()
    endforeach()
  endforeach()
endfunction()

cmake_language(DEFER DIRECTORY "${PROJECT_SOURCE_DIR}" CALL fastpanel_mutate_instrument)
