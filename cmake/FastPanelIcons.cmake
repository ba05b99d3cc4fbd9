# Icons are kept as SVG sources in resources/icons and rendered to PNG during the build, so the
# repository holds only editable artwork and the PNGs always match it.
#
#   fastpanel_add_icons(<target> PREFIX <prefix> DARK_PREFIX <dark-prefix> ICONS <name>...)
#
# compiles resources/icons/<name>.svg, rendered at 24 px, into <target> as ":/<prefix>/<name>.png",
# with its twin at 48 px, ":/<prefix>/<name>@2x.png", which Qt takes by itself where pixels are
# twice as dense; and the same two lifted for dark rows under ":/<dark-prefix>/".
# Call it from the folder that defines <target>: the generated sources are only visible there.
# The resources register when the library loads, so a shared library carries its own icons.

set(FASTPANEL_ICON_SOURCE_DIR "${CMAKE_CURRENT_LIST_DIR}/../resources/icons")
set(FASTPANEL_ICON_SIZE 24)

function(fastpanel_add_icons target)
  cmake_parse_arguments(ARG "" "PREFIX;DARK_PREFIX" "ICONS" ${ARGN})
  if(NOT ARG_PREFIX OR NOT ARG_DARK_PREFIX OR NOT ARG_ICONS OR ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "fastpanel_add_icons(${target} PREFIX <prefix> DARK_PREFIX <dark-prefix> ICONS <name>...)")
  endif()
  if(NOT TARGET ${target})
    message(FATAL_ERROR "fastpanel_add_icons: no target '${target}' (define it first)")
  endif()

  get_filename_component(svg_dir "${FASTPANEL_ICON_SOURCE_DIR}" ABSOLUTE)
  # Per target, so two libraries may ship icons under the same prefix without clashing files.
  set(out_dir "${CMAKE_CURRENT_BINARY_DIR}/${target}_icons")
  # rcc names its registration function after the .qrc, so the name must be unique per library.
  set(qrc "${out_dir}/${target}_${ARG_PREFIX}_icons.qrc")
  math(EXPR double_size "${FASTPANEL_ICON_SIZE} * 2")

  set(resources "")
  foreach(variant IN ITEMS light dark)
    set(prefix ${ARG_PREFIX})
    if(variant STREQUAL "dark")
      set(prefix ${ARG_DARK_PREFIX})
    endif()
    set(entries "")
    foreach(name IN LISTS ARG_ICONS)
      set(svg "${svg_dir}/${name}.svg")
      if(NOT EXISTS "${svg}")
        message(FATAL_ERROR "fastpanel_add_icons(${target}): no icon source ${svg}")
      endif()
      foreach(scale IN ITEMS 1 2)
        set(file "${name}.png")
        set(size ${FASTPANEL_ICON_SIZE})
        if(scale EQUAL 2)
          set(file "${name}@2x.png")
          set(size ${double_size})
        endif()
        set(png "${out_dir}/${prefix}/${file}")
        add_custom_command(OUTPUT "${png}"
          COMMAND icon-renderer "${svg}" "${png}" ${size} ${variant}
          DEPENDS "${svg}" icon-renderer
          COMMENT "Rendering icon ${prefix}/${file}"
          VERBATIM)
        string(APPEND entries "    <file alias=\"${file}\">${prefix}/${file}</file>\n")
      endforeach()
    endforeach()
    string(APPEND resources "<qresource prefix=\"/${prefix}\">\n${entries}</qresource>\n")
  endforeach()

  # Written at configure time so qt_add_resources can read the list of PNGs it depends on;
  # file(CONFIGURE) leaves the file untouched when nothing changed, so rcc does not rerun.
  file(CONFIGURE OUTPUT "${qrc}" CONTENT
"<!DOCTYPE RCC>
<RCC version=\"1.0\">
${resources}</RCC>
")
  qt_add_resources(rcc_sources "${qrc}")
  target_sources(${target} PRIVATE ${rcc_sources})
endfunction()
