# What can be computed from depth, temperature and salinity of the Atlantic section: plots, and a spreadsheet with the
# derived variables. Run it behind section.cmd, in the same folder:  nvqmp -x derived.cmd -q
open_collection atlantic_section.var

set_key Depth [m]=Depth
set_key Temperature [C]=Temperature
set_key Salinity [psu]=Salinity
add_derived Potential Temperature,0
add_derived Potential Density,0
add_derived Potential Density,2000
add_derived Brunt-Vaisala Freq.
add_derived Dynamic Height,1000
add_derived Sound Speed
add_derived Vertical Integral,Tpot-0,0
add_expression Heat content [GJ/m~^2],8.2,#1 3.985 * 1.025 *,10

set_mode SCATTER
use_layout SCATTER 2 Win
set_window 1,Salinity,Tpot-0,Sigma-0
set_window 2,Sound Speed,-Depth,Tpot-0
full_range
export_graphics -1,derived_scatter.png,150
export_graphics -1,derived_scatter.eps,150

# Stability, dynamic height and the integral need levels that aren't too far apart: these stations end above the steps of
# 1000 m of the deep ones.
set_mode STATION
use_layout STATION 2 Win
set_window 1,Brunt-Vaisala Freq.,-Depth
set_window 2,Dyn.Ht.-1000,-Depth
set_range 1,-2,10,0,2100
set_range 2,-0.6,1.2,0,2100
plot_station 2
plot_station 113
plot_station 120
plot_station 135
export_graphics -1,derived_profiles.png,150
export_graphics -1,derived_profiles.eps,150

export_spreadsheet derived_data.txt,,Depth Tpot-0 Sigma-0 Sigma-2000 "Brunt-Vaisala Freq." Dyn.Ht.-1000 "Sound Speed" "Heat content"
quit
