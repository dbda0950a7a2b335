# A meridional section of the Atlantic: map, profiles, property plots, and the data as a spreadsheet.
# Run it in the folder that holds atlantic_section.txt:  nvqmp -x section.cmd -q
open_collection atlantic_section.txt

set_mode MAP
set_domain -90,30,-80,75
export_graphics 0,section_map.png,150
export_graphics 0,section_map.eps,150

set_mode STATION
use_layout STATION 2 Win
set_window 1,Temperature,-Depth
set_window 2,Salinity,-Depth
full_range
plot_station 5
plot_station 25
plot_station 45
plot_station 65
plot_station 85
plot_station 105
plot_station 125
plot_station 140
export_graphics -1,section_profiles.png,150
export_graphics -1,section_profiles.eps,150

set_mode SCATTER
use_layout SCATTER 2 Win
set_window 1,Salinity,Temperature,Depth
set_window 2,Temperature,-Depth,Salinity
full_range
export_graphics -1,section_scatter.png,150
export_graphics -1,section_scatter.eps,150

export_data section_data.txt
quit
