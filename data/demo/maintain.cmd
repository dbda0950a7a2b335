# Keeping a collection: a copy of the Atlantic section is thinned to its southern half, gets room for oxygen, and is
# checked after each step. Run it in the folder that holds atlantic_section.txt and southern_variables.txt:
#   nvqmp -x maintain.cmd -q
open_collection atlantic_section.txt
copy_collection southern_section

delete_empty
set_domain -90,30,0,75
delete_selected
set_domain -90,30,-80,5
check_collection

sort_condense
change_variables southern_variables.txt
log_comment southern half, room for oxygen
check_collection

set_mode STATION
use_layout STATION 2 Win
plot_station all
export_graphics -1,southern_profiles.png,150
export_graphics -1,southern_profiles.eps,150
export_data southern_data.txt

move_collection atlantic_south
close
check_collection atlantic_south
quit
