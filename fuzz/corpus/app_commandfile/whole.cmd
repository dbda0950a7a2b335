# the whole road
set_import overwrite=yes
open_collection \data\a.txt      # a comment
load_cfg a.cfg
set_mode SCATTER
use_layout SCATTER 2 Win
set_window 1,Salinity,-Temperature,Depth [m]
set_range 1,33,37,-2,30,0,5000
full_range 1
full_range
set_style 1,0,1.5
set_palette 0,Nvq.pal
set_domain -40,20,-60.5,70,5,-20,10
plot_station 12
plot_station all
export_graphics -1,a.png,150
export_graphics 1,a.eps
export_data out.txt
quit
