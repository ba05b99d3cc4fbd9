# The libFuzzer build (FASTPANEL_BUILD_FUZZERS, ./dev fuzz), clang only. Every target compiled
# here carries the coverage hooks and the sanitizers, so that a fuzzer is guided through the
# library code it drives and stops at the first fault in it. Qt, POCO and libcurl come from the
# system as they are, built with g++ against the same libstdc++.

if(FASTPANEL_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "FASTPANEL_BUILD_FUZZERS needs clang++ (-DCMAKE_CXX_COMPILER=clang++)")
  endif()
  if(FASTPANEL_SANITIZE)
    message(FATAL_ERROR "FASTPANEL_BUILD_FUZZERS brings its own sanitizers; leave FASTPANEL_SANITIZE empty")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined
    # Undefined behaviour must end the run as a crash does, or the fuzzer would pass over it.
    -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  # Programs of this build that are not fuzzers still need the sanitizers' runtime.
  add_link_options(-fsanitize=address,undefined)
  set(FASTPANEL_FUZZER_LINK_OPTIONS -fsanitize=fuzzer,address,undefined)
endif()
