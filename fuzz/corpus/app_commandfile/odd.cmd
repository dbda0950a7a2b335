set_mode MAP
set_range 1,1,0,nan,1e99quit quit
