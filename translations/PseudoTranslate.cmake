cmake_minimum_required(VERSION 3.25)
# Makes the pseudo-translation of the template: every text translated into itself within
# brackets, "[" + text + "]", for each numerus form as well. A text shown without its brackets
# under this translation escaped tr().
#   cmake -DTEMPLATE=<fastpanel.ts> -DOUTPUT=<fastpanel_en_XA.ts> -DLOCALE=en_XA -P PseudoTranslate.cmake
# The source texts are copied as lupdate escaped them, so entities and %1 stay as they are.
# The locale's language is English, which has two numerus forms.

foreach(variable TEMPLATE OUTPUT LOCALE)
  if(NOT ${variable})
    message(FATAL_ERROR "PseudoTranslate.cmake needs -D${variable}=...")
  endif()
endforeach()

file(READ "${TEMPLATE}" ts)
# An escaped source text never holds "<".
set(source "<source>([^<]*)</source>(\n *)")
string(REGEX REPLACE
  "${source}<translation type=\"unfinished\">(\n *)<numerusform></numerusform>(\n *)</translation>"
  "<source>\\1</source>\\2<translation>\\3<numerusform>[\\1]</numerusform>\\3<numerusform>[\\1]</numerusform>\\4</translation>"
  ts "${ts}")
string(REGEX REPLACE "${source}<translation type=\"unfinished\"></translation>"
  "<source>\\1</source>\\2<translation>[\\1]</translation>" ts "${ts}")
string(REGEX REPLACE "<TS ([^>]*)>" "<TS \\1 language=\"${LOCALE}\">" ts "${ts}")

# Anything left unfinished would be left out of the .qm, and show untranslated.
string(FIND "${ts}" "type=\"unfinished\"" unfinished)
if(NOT unfinished EQUAL -1)
  message(FATAL_ERROR "${TEMPLATE} holds a message of a form that PseudoTranslate.cmake does not know")
endif()
file(WRITE "${OUTPUT}" "${ts}")
