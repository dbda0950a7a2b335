# Data out and in again: a part of the Atlantic section leaves as spreadsheet, as listings and as a collection, and
# comes back. Run it in the folder that holds atlantic_section.txt:  nvqmp -x roundtrip.cmd -q
open_collection atlantic_section.txt

# Which stations, and which of their samples. Each line tells how many stations are selected.
select lat=-60:-30 require=Temperature:Salinity
select sample=Depth:0:1000 quality=questionable
export_spreadsheet upper_south.txt,-999,1 Temperature "Salinity [psu]"
export_listing o4x,upper_south.o4x
export_listing o3x,upper_south_old.o3x
export_collection upper_south_copy
select reset

# A listing opens as a collection of its name; a 3.0 listing as upper_south_old_o3x, beside its description.
close
open_collection upper_south_old.o3x
close
open_collection upper_south.o4x

# The same stations again: merged, they keep their values. The account says what became of every one.
set_import missing=-999
import_file spreadsheet,upper_south.txt,merge

# The rest of the section joins; stations that are there already stay as they are.
set_import existing=keep
import_file spreadsheet,atlantic_section.txt
check_collection
export_data roundtrip_data.txt
quit
