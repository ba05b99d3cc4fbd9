# Builds the whole tree under the sanitizers named in FASTPANEL_SANITIZE: "address,undefined"
# or "thread" (./dev sanitize). Every target gets the flags, so the libraries, the emulators and
# the tests are all instrumented; Qt, POCO and libcurl from the system are not.

set(FASTPANEL_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined or thread")

if(FASTPANEL_SANITIZE)
  if(MSVC)
    message(FATAL_ERROR "FASTPANEL_SANITIZE is for GCC and Clang builds")
  endif()
  set(FASTPANEL_SANITIZER_FLAGS
    "-fsanitize=${FASTPANEL_SANITIZE}"
    -fno-omit-frame-pointer
    # A report ends the program, so that a test cannot pass over it.
    -fno-sanitize-recover=all)
  add_compile_options(${FASTPANEL_SANITIZER_FLAGS})
  add_link_options("-fsanitize=${FASTPANEL_SANITIZE}")
endif()
