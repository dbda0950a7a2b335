create_collection new\a, WOCE WHP CTD variables
create_collection b,cast.txt
copy_collection c d.var
move_collection ..\e
sort_condense
change_variables list.txt
delete_selected
delete_empty
delete_station 12
log_comment leg 2, again # no more
check_collection
check_collection e.var
close
delete_collection
