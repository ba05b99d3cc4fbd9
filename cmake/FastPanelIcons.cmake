# placeholder: fastpanel_add_icons(<target> PREFIX <prefix> ICONS <name>...) comes with the icon build
function(fastpanel_add_icons target)
endfunction()
