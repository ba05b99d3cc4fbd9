cmake_minimum_required(VERSION 3.25)
# Writes the translation template: every text that fast/ and platform/ pass to tr() or
# QCoreApplication::translate(), by context, with lupdate.
#   cmake -DLUPDATE=<lupdate> -DSOURCE_DIR=<source root> -DTEMPLATE=<file.ts> -P UpdateTemplate.cmake
# Without source locations, so that the template changes only when a text does; texts that are
# gone from the code go from the template too.

foreach(variable LUPDATE SOURCE_DIR TEMPLATE)
  if(NOT ${variable})
    message(FATAL_ERROR "UpdateTemplate.cmake needs -D${variable}=...")
  endif()
endforeach()

execute_process(
  COMMAND "${LUPDATE}" -silent -locations none -no-obsolete -source-language en
    # The include roots, so that lupdate sees each class's Q_OBJECT and namespace.
    -I "${SOURCE_DIR}" -I "${SOURCE_DIR}/platform"
    "${SOURCE_DIR}/fast" "${SOURCE_DIR}/platform"
    -ts "${TEMPLATE}"
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "lupdate failed (${result})")
endif()
