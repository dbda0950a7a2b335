# One column every five degrees of the globe: maps in several projections, property plots of everything.
# Run it in the folder that holds global_means.txt:  nvqmp -x global.cmd -q
open_collection global_means.txt

set_mode MAP
export_graphics 0,global_map.png,150
export_graphics 0,global_map.eps,150
set_domain 20,380,-90,90,4
export_graphics 0,global_mollweide.png,150
export_graphics 0,global_mollweide.eps,150
set_domain -180,180,-90,90,5,-30,25
export_graphics 0,global_oblique.png,150
export_graphics 0,global_oblique.eps,150
set_domain -180,180,-90,-20,5,0,-90
export_graphics 0,global_southpole.png,150
export_graphics 0,global_southpole.eps,150
set_domain 0,360,-90,90,0

set_mode SCATTER
use_layout SCATTER 2 Win
set_window 1,Salinity,Temperature,Depth
set_window 2,Temperature,-Depth,Salinity
set_palette 2,Haline
full_range
set_range 1,30,38,-3,30,0,2000
export_graphics -1,global_scatter.png,150
export_graphics -1,global_scatter.eps,150

export_data global_data.txt
quit
