#include "platform/jet/check/damages.h"

namespace jet::check {

namespace {

using enum What;

constexpr auto content = Finding::Grade::content;
constexpr auto warning = Finding::Grade::warning;

// In library_2003: MSysObjects has its rows on page 14, MSysACEs on 21 and 58, MSysRelationships on
// 65; Sets is page 50 (rows 68, maps 51, trees 52 and 53), CVs 54 (rows from 70 on, trees 56 and
// 57), Scripte 59 (rows 101, trees 61 and 66), Scriptstates 62 (rows from 103 on, trees 64 and 67).
// Pages 15, 16 and 40 to 45 are free; property blobs lie on page 23.
// In worn_library: Sets is page 24, with moved rows on page 42 and long values from page 108 on.
// clang-format off
const Damage all[] = {
    // the file and its header
    {"half_a_page", "library_2003", "end+100", {file_length},
     "The file has 462948 bytes, which is no whole number of pages."},
    {"too_short", "library_2003", "end-454656", {file_length},
     "The file is shorter than three pages."},
    {"other_name", "library_2003", "0:004=58", {not_jet},
     "The file is no Jet database."},
    {"other_version", "library_2003", "0:014=02", {version},
     "The file has version 2 of the format; only Jet 3 (0) and Jet 4 (1) can be read."},
    {"enciphered", "library_2003", "0:03e=fa", {enciphered},
     "The pages of the file are enciphered."},
    {"password", "library_2003", "0:042=78", {password},
     "The file is protected by a password.", warning},
    {"open_commit", "library_2003", "0:e04=0000", {commit_bytes},
     "The commit bytes of 1 of 256 users are zero: a write was perhaps interrupted.", warning},
    {"global_map_elsewhere", "library_2003", "0:018=b4", {header_pointer},
     "The header does not name page 1 as the place of the map of free pages."},
    {"system_table_elsewhere", "library_2003", "0:020=e8", {header_pointer},
     "The header does not name pages 2 to 5 as those of the system tables.", warning},

    // usage maps and ownership of pages
    {"global_map_page", "library_2003", "1:000=02", {page_kind},
     "Page 1 holds the map of free pages but is no data page (type 2)."},
    {"global_map_kind", "library_2003", "1:fbb=07", {map_kind},
     "The map of free pages on page 1 is of the unknown kind 7."},
    {"map_row_absent", "library_2003", "50:037=09", {map_pointer},
     "The map of the rows of table 'Sets' should be row 9 of page 51, which has no such "
     "row."},
    {"map_nowhere", "library_2003", "50:037=00000000", {map_pointer},
     "The map of the rows of table 'Sets' should be row 0 of page 0, which is no page "
     "of maps."},
    {"map_beyond_end", "library_2003", "50:038=ff", {map_pointer},
     "The map of the rows of table 'Sets' should be row 0 of page 255, which is no page "
     "of maps."},
    {"map_row_deleted", "library_2003", "51:00f=cf", {map_pointer},
     "The map of the rows of table 'Sets' should be row 0 of page 51, but that row is "
     "deleted."},
    {"map_kind_unknown", "library_2003", "51:fbb=05", {map_kind},
     "The map of the rows of table 'Sets' on page 51 is of the unknown kind 5."},
    {"map_row_of_two", "library_2003", "50:03b=00", {map_shared},
     "The map of free space in the rows of table 'Sets' should be row 0 of page 51, "
     "where another map is kept already."},
    {"map_reference_beyond_end", "library_2003", "51:fc0=ff", {map_reference},
     "The map of the rows of table 'Sets' on page 51 refers to page 255 beyond the "
     "file.", warning},
    {"map_bits_on_other_page", "library_2003", "69:000=01", {page_kind},
     "Page 69 holds bits of the map of the rows of table 'Sets' but has type 1."},
    {"map_lists_page_beyond_end", "library_2003", "51:f8a=01", {map_beyond_file},
     "The map of free space in the rows of table 'Sets' on page 51 lists page 120 "
     "beyond the file."},
    {"free_map_lists_other_page", "library_2003", "51:f83=50", {free_map_not_owned},
     "The map of free space in the rows of table 'Sets' lists page 70, which is not one "
     "of its pages.", warning},
    {"page_of_two_tables", "library_2003", "69:00c=50", {page_owned_twice, page_table},
     "Page 70 belongs to the rows of table 'Sets' and to the rows of table 'CVs'."},
    {"page_lost", "library_2003", "1:fc5=3d", {page_lost},
     "Page 41 is in use, but nothing owns it.", warning},
    {"pages_lost", "library_2003", "1:fc5=31", {page_lost},
     "Pages 41 to 43 are in use, but nothing owns them.", warning},
    {"page_free_but_used", "library_2003", "1:fc8=10", {page_free_but_used},
     "Page 68 is marked as free, but belongs to the rows of table 'Sets'."},
    {"data_page_forgotten", "library_2003", "71:010=02",
     {row_count, free_map_not_owned, index_entry_extra, page_lost},
     "Table 'CVs' has 2685 rows, but its definition says 2810."},

    // data pages and rows
    {"data_page_type", "library_2003", "68:000=04", {page_kind},
     "Page 68 holds the rows of table 'Sets' but is no data page (type 4)."},
    {"data_page_of_other_table", "library_2003", "68:004=33", {page_table},
     "Page 68 holds the rows of table 'Sets' but its table field says 51 instead of 50."},
    {"too_many_slots", "library_2003", "68:00c=ffff", {slot_table},
     "Page 68 (the rows of table 'Sets') claims 65535 rows, more than a page can have."},
    {"rows_overlap", "library_2003", "68:010=d00f", {slot_offset},
     "Page 68 (the rows of table 'Sets'), row 1: begins at 4048, outside the room from "
     "106 to 4046 that the rows before it leave."},
    {"row_in_slot_table", "library_2003", "68:068=2000", {slot_offset},
     "Page 68 (the rows of table 'Sets'), row 45: begins at 32, outside the room from "
     "106 to 1747 that the rows before it leave."},
    {"unknown_slot_flag", "library_2003", "68:00f=2f", {slot_flags},
     "Page 68 (the rows of table 'Sets'), row 0: unknown flag of its slot."},
    {"free_field_wrong", "library_2003", "68:002=2f", {free_field},
     "Page 68 (the rows of table 'Sets') has 1582 free bytes, but says 1583."},
    {"row_of_more_columns", "library_2003", "68:fce=05", {row_columns},
     "Table 'Sets', page 68, row 0 has 5 columns, its table at most 4."},
    {"row_of_more_slots", "library_2003", "68:ffd=02", {row_slots},
     "Table 'Sets', page 68, row 0 has 2 variable columns, its table at most 1."},
    {"row_offset_outside", "library_2003", "68:ffb=ff0f", {row_offsets},
     "Table 'Sets', page 68, row 0 has a value at 4095, outside the room from 2 to 43."},
    {"row_fixed_part_short", "library_2003", "68:ffb=0a00", {row_fixed_part},
     "Table 'Sets', page 68, row 0 ends its fixed part at 10, inside column 'ResCV'."},
    {"row_short", "library_2003", "100:00e=fe0f 100:ffd=3f0600", {row_short},
     "Table 'CVs', page 100, row 0 has only 2 bytes."},
    {"stray_null_bits", "library_2003", "68:fff=1f", {row_bitmap},
     "Table 'Sets', page 68, row 0 has null bits beyond its columns.", warning},
    {"moved_to_live_row", "worn_library", "42:b74=02", {moved_row_target},
     "Table 'Sets', page 42, row 3 has moved to row 2 of page 42, which is no place of "
     "a moved row."},
    {"moved_beyond_slots", "worn_library", "42:b74=c8", {moved_row_target},
     "Table 'Sets', page 42, row 3 has moved to row 200 of page 42, which is not there."},
    {"moved_to_other_table", "worn_library", "42:b75=30", {moved_row_target},
     "Table 'Sets', page 42, row 3 has moved to row 12 of page 48, which is no page of "
     "its rows."},
    {"moved_to_taken_place", "worn_library", "42:b74=004c", {moved_row_shared},
     "Table 'Sets', page 42, row 5 has moved to row 0 of page 76, where another row has "
     "moved, too."},
    {"moved_to_itself", "worn_library", "42:b74=03", {moved_row_loop},
     "Table 'Sets', page 42, row 3 has moved to row 3 of page 42, from where the "
     "pointers go in a circle."},
    {"moved_in_a_circle", "worn_library", "42:b74=052a 42:920=032a", {moved_row_loop},
     "Table 'Sets', page 42, row 3 has moved to row 5 of page 42, from where the "
     "pointers go in a circle."},
    {"moved_row_left_behind", "worn_library", "42:015=cb",
     {moved_row_unreached, index_entry_extra, row_count},
     "Table 'Sets' has 1 moved rows that no pointer leads to."},

    // values
    {"half_a_character", "library_2003", "68:df0=3b", {text_form},
     "Table 'Sets', page 68, row 10 in column 'Name' ends in half a character."},
    {"half_a_wide_character", "library_2003", "68:ff7=00", {text_form},
     "Table 'Sets', page 68, row 0 in column 'Name' ends in half a character."},
    {"text_too_long", "library_2003", "50:087=48", {text_long},
     "Table 'Sets', page 68, row 12 in column 'Name' has a length of 42, its column of "
     "36.", warning},
    {"length_of_a_number", "library_2003", "19:ff5=15", {value_length},
     "Table 'MSysNavPaneObjectIDs', page 19, row 0 in column 'Type' has 3 bytes instead "
     "of 4."},
    {"null_in_key", "library_2003", "68:fff=0e", {index_null, index_key},
     "Table 'Sets', page 68, row 0 has nothing in column 'SetID', which index "
     "'PrimaryKey' of table 'Sets' requires."},
    {"null_where_required", "library_2003", "103:ffe=fb", {null_in_required_column},
     "Table 'Scriptstates', page 103, row 0 has nothing in column 'State', which "
     "requires a value.", content},
    {"long_value_kind", "worn_library", "42:442=c0", {long_header},
     "Table 'Sets', page 42, row 10: its long value begins with a broken header."},
    {"long_value_longer_than_row", "worn_library", "42:43f=40", {long_header},
     "Table 'Sets', page 42, row 10: its long value should have 64 bytes, but the row "
     "holds 62."},
    {"long_value_row_absent", "worn_library", "53:cb7=07", {long_piece},
     "Table 'Sets', page 42, row 8: its long value should go on in row 7 of page 69, "
     "which is not there."},
    {"long_value_on_data_page", "worn_library", "53:cb8=2a", {long_piece},
     "Table 'Sets', page 42, row 8: its long value lies on page 42, which belongs to "
     "the rows of table 'Sets'."},
    {"long_value_beyond_end", "worn_library", "53:cb8=ffff", {long_piece},
     "Table 'Sets', page 42, row 8: its long value lies on page 65535 beyond the file."},
    {"long_value_row_short", "worn_library", "53:cb3=79", {long_short},
     "Table 'Sets', page 42, row 8: its long value ends 1 bytes too early."},
    {"long_value_loop", "worn_library", "109:014=006c", {long_loop},
     "Table 'Sets', page 42, row 5: its long value uses row 0 of page 108 twice."},
    {"long_value_chain_short", "worn_library", "108:014=000000", {long_short},
     "Table 'Sets', page 42, row 5: its long value ends 6328 bytes too early."},
    {"long_value_of_two_rows", "worn_library", "188:bfa=006c00", {long_shared},
     "Table 'Sets', page 188, row 3: its long value uses row 0 of page 108, which "
     "another value uses."},
    {"long_value_rest_unused", "worn_library", "76:feb=001f", {long_unused},
     "Of the long values of 'Bemerkung' of table 'Sets', 1 rows are used by no value; "
     "the first one is on page 110.", warning},
    {"long_value_stamp", "worn_library", "76:ff3=01", {long_stamp},
     "Table 'Sets', page 42, row 5: the stamp of its long value differs from that of "
     "page 108.", warning},
    {"long_value_page_sign", "worn_library", "108:004=00", {page_table},
     "Page 108 holds the long values of 'Bemerkung' of table 'Sets' but its table field "
     "says 1279350272 instead of the sign of long values."},

    // table definitions
    {"definition_beyond_end", "library_2003", "50:004=ff", {definition_page},
     "Table 'Sets': page 255 of its definition lies beyond the file."},
    {"definition_on_data_page", "library_2003", "50:004=29", {definition_page},
     "Table 'Sets': page 41 of its definition is no definition page."},
    {"definition_loop", "library_2003", "50:004=32", {definition_loop},
     "Table 'Sets': page 50 of its definition makes the chain go in a circle."},
    {"definition_length_more", "library_2003", "50:008=f7", {definition_length},
     "Table 'Sets': the definition on page 50 ends before the length that it gives."},
    {"definition_length_less", "library_2003", "50:008=f3", {definition_length},
     "Table 'Sets': the definition on page 50 is too short for its parts."},
    {"definition_end_mark", "library_2003", "50:1f3=fe", {definition_end},
     "Table 'Sets': the definition on page 50 does not end with its mark."},
    {"definition_constant", "library_2003", "50:00c=58", {definition_constant},
     "Table 'Sets': header of its definition begins with 1624 instead of 1625.", warning},
    {"definition_free", "library_2003", "50:002=02", {definition_free},
     "Table 'Sets', definition page 50 has 3587 free bytes, but says 3586.", warning},
    {"too_many_columns", "library_2003", "50:029=03", {column_count, column_number},
     "Table 'Sets' has 4 columns, but room for 3."},
    {"too_many_trees", "library_2003", "50:033=41", {definition_counts},
     "Table 'Sets': the definition on page 50 claims 4 columns, 4 indexes and 65 trees."},
    {"room_for_too_many_columns", "library_2003", "50:02a=01", {column_count},
     "Table 'Sets' has room for 260 columns, more than a table can have."},
    {"column_number_twice", "library_2003", "50:08e=01", {column_number},
     "Table 'Sets' has two columns with the number 1."},
    {"column_slot_absent", "library_2003", "50:077=01", {column_slot},
     "Table 'Sets' gives column 'Name' the slot 1, but has slots below 1."},
    {"columns_overlap", "library_2003", "50:0b7=06", {column_overlap},
     "Table 'Sets' keeps column 'ResCV' at 6, inside the column before it, which ends "
     "at 8."},
    {"column_type_unknown", "library_2003", "50:089=7f", {column_type},
     "Table 'Sets' gives column 'Nummer' the unknown type 127."},
    {"column_length_of_long", "library_2003", "50:0a0=02", {column_length},
     "Table 'Sets' gives column 'Nummer' the length 2."},
    {"column_name_twice", "library_2003", "62:17c=70 62:182=31", {column_name},
     "Table 'Scriptstates' has two columns named 'par1'."},
    {"index_column_absent", "library_2003", "50:0ef=07", {index_columns},
     "Table 'Sets': index 'PrimaryKey' of table 'Sets' stands on a column that is not "
     "there, on one column twice, or on none."},
    {"index_column_twice", "library_2003", "50:0f2=000001", {index_columns},
     "Table 'Sets': index 'PrimaryKey' of table 'Sets' stands on a column that is not "
     "there, on one column twice, or on none."},
    {"index_without_tree", "library_2003", "50:177=05", {index_real, index_unused},
     "Table 'Sets' keeps index 'Name' in tree 5, but has 2 trees."},
    {"index_number_twice", "library_2003", "50:173=00", {index_number},
     "Table 'Sets' gives the number 0 to index 'Name' and another index."},
    {"index_name_twice", "library_2003", "50:1e9=43", {index_name},
     "Table 'Sets' has index '.rC' twice, or an index name that is empty or too long."},
    {"two_primary_keys", "library_2003", "50:186=01", {index_keys},
     "Table 'Sets' has 2 primary keys."},
    {"tree_without_index", "library_2003", "50:177=00", {index_unused},
     "Table 'Sets': tree 1 belongs to no index.", warning},
    {"long_value_maps_of_number", "worn_library", "24:220=03", {column_number},
     "Table 'Sets' has maps of long values for the number 3, which is no Memo or OLE "
     "column."},

    // index trees
    {"root_beyond_end", "library_2003", "50:111=f0", {index_page},
     "Page 50 of index 'PrimaryKey' of table 'Sets' leads to page 240, which is not "
     "there."},
    {"index_page_type", "library_2003", "52:000=01", {page_kind},
     "Page 52 of index 'PrimaryKey' of table 'Sets' is no index page (type 1)."},
    {"index_page_of_other_table", "library_2003", "52:004=33", {page_table},
     "Page 52 of index 'PrimaryKey' of table 'Sets' says that it belongs to the table "
     "on page 51."},
    {"index_loop", "library_2003", "56:1ec=38", {index_loop},
     "Page 56 of index 'PrimaryKey' of table 'CVs' stands in its tree twice."},
    {"index_leaf_too_high", "worn_library", "27:205=eb",
     {index_depth, index_links, index_node_copy},
     "Page 297 of index 'Name' of table 'Sets' is a leaf at another depth than the "
     "others."},
    {"index_link_back", "library_2003", "80:00c=00", {index_links},
     "Page 80 of index 'PrimaryKey' of table 'CVs' names page 0 before it, which is not "
     "its neighbour."},
    {"index_link_on", "library_2003", "75:010=51", {index_links},
     "Page 75 of index 'PrimaryKey' of table 'CVs' goes on to page 81, which is not its "
     "neighbour."},
    {"index_mask_beyond_end", "library_2003", "52:1df=80", {index_mask},
     "Page 52 of index 'PrimaryKey' of table 'Sets' has a mark for an entry beyond its "
     "end."},
    {"index_mask_bit_missing", "library_2003", "52:01c=00", {index_entry_missing, index_key},
     "Table 'Sets', page 68, row 0 has no entry in index 'PrimaryKey' of table 'Sets'."},
    {"index_prefix_too_long", "library_2003", "64:018=14", {index_prefix},
     "Page 64 of index 'PrimaryKey' of table 'Scriptstates' shares 20 bytes of a first "
     "entry of 9."},
    {"index_prefix_wrong", "library_2003", "64:018=02", {index_key},
     "Table 'Scriptstates', page 103, row 1 has an entry that does not fit its values "
     "in index 'PrimaryKey' of table 'Scriptstates'."},
    {"index_free_field", "library_2003", "52:002=8c", {free_field},
     "Page 52 of index 'PrimaryKey' of table 'Sets' has 3211 free bytes, but says 3212."},
    {"index_entry_short", "library_2003", "52:01b=04", {index_entry_short},
     "Page 52 of index 'PrimaryKey' of table 'Sets' has an entry (0) of 2 bytes."},
    {"index_order", "library_2003", "52:1e0=7f80000002000044017f8000000100004400", {index_order},
     "Page 52 of index 'PrimaryKey' of table 'Sets' has entry 1 out of order."},
    {"index_key_byte", "library_2003", "52:1e4=00", {index_key},
     "Table 'Sets', page 68, row 0 has an entry that does not fit its values in index "
     "'PrimaryKey' of table 'Sets'."},
    {"index_row_wrong", "library_2003", "52:1e8=04", {index_entry_missing, index_entry_extra},
     "Table 'Sets', page 68, row 0 has no entry in index 'PrimaryKey' of table 'Sets'."},
    {"index_text_key", "library_2003", "53:232=14", {index_key},
     "Table 'Sets', page 68, row 17 has an entry that does not fit its values in index "
     "'Name' of table 'Sets'."},
    {"index_entry_missing", "library_2003", "52:002=94 52:04d=00", {index_entry_missing},
     "Table 'Sets', page 68, row 45 has no entry in index 'PrimaryKey' of table 'Sets'."},
    {"index_entry_extra", "library_2003", "68:00f=cf", {index_entry_extra, row_count},
     "Table 'Sets', page 68, row 0 is not there, but has an entry in index 'PrimaryKey' "
     "of table 'Sets'."},
    {"index_node_copy_less", "library_2003", "56:1e4=15", {index_node_copy},
     "Page 56 of index 'PrimaryKey' of table 'CVs' has an entry (0) that is less than "
     "the last one below it."},
    {"index_node_copy_greater", "library_2003", "56:1e8=ff", {index_node_copy},
     "Page 56 of index 'PrimaryKey' of table 'CVs' has an entry (0) that is greater "
     "than the last one below it.", warning},
    {"index_node_copy_overlaps", "library_2003", "56:1e3=02", {index_node_copy},
     "Page 56 of index 'PrimaryKey' of table 'CVs' has an entry (0) that reaches into "
     "the next child."},
    {"index_leaf_tail", "library_2003", "52:014=01", {index_tail},
     "Page 52 of index 'PrimaryKey' of table 'Sets' is a leaf, but has a tail.", warning},
    {"index_leaf_emptied", "library_2003", "75:01b=00*453 75:002=200e",
     {index_page_empty, index_entry_missing},
     "Page 75 of index 'PrimaryKey' of table 'CVs' is empty."},
    {"index_page_not_in_map", "library_2003", "51:f36=00", {index_map},
     "Page 52 of index 'PrimaryKey' of table 'Sets' is in its tree, but not in the map "
     "of its pages."},
    {"index_map_lists_free_page", "library_2003", "51:f32=28 51:f36=0110",
     {index_map, page_free_but_used},
     "Page 40 of index 'PrimaryKey' of table 'Sets' is in the map of its pages, but not "
     "in its tree."},
    {"index_duplicate", "library_2003", "54:1a1=81", {index_duplicate},
     "Page 78 of index 'SetID' of table 'CVs' has the key of entry 1 twice, but the "
     "index is unique."},

    // counters
    {"row_count", "library_2003", "50:010=2e", {row_count},
     "Table 'Sets' has 45 rows, but its definition says 46."},
    {"row_count_of_system_table", "library_2003", "2:010=1e", {row_count},
     "Table 'MSysObjects' has 29 rows, but its definition says 30.", warning},
    {"autonumber", "library_2003", "50:014=2d", {autonumber},
     "Table 'Sets' says that the last number given was 45, but a row has 46.", warning},

    // catalogue and properties
    {"catalogue_column", "library_2003", "2:276=78", {catalogue_columns},
     "The catalogue MSysObjects has no column 'Id'."},
    {"catalogue_row_to_free_page", "library_2003", "14:6cb=28",
     {catalogue_table, index_key, catalogue_rights},
     "The catalogue says that table 'Sets' begins on page 40, which is no definition "
     "page."},
    {"catalogue_row_beyond_end", "library_2003", "14:6cb=ff",
     {catalogue_table, index_key, catalogue_rights},
     "The catalogue says that table 'Sets' begins on page 255, which is not there."},
    {"catalogue_rows_to_one_page", "library_2003", "14:6cb=36",
     {catalogue_table, index_key, catalogue_rights, relation_index},
     "The catalogue says that table 'CVs' begins on page 54, which belongs to the "
     "definition of table 'Sets'."},
    {"catalogue_row_deleted", "library_2003", "14:03f=c6",
     {definition_unnamed, index_entry_extra, row_count, page_lost,
      catalogue_rights, relation_partner, relation_rows},
     "Page 50 is in use and looks like the definition of a table, but the catalogue "
     "does not name it."},
    {"container_of_other_type", "library_2003", "14:fbf=02", {catalogue_container},
     "The catalogue has no container 'Tables'."},
    {"database_entry", "library_2003", "14:ebe=03", {catalogue_container},
     "The catalogue has no entry 'MSysDb'.", warning},
    {"relation_not_in_catalogue", "library_2003", "14:455=05", {relation_object},
     "Relation 'SetsCVs' is missing in the catalogue MSysObjects.", warning},
    {"rights_of_nothing", "library_2003", "58:cb8=0d", {catalogue_rights, index_key},
     "MSysACEs has rights for the object 2147483661, which is not there."},
    {"property_mark", "library_2003", "23:c86=4e", {property_block},
     "Table 'Scripte': its properties do not begin with their mark."},
    {"property_block_length", "library_2003", "23:c8a=31", {property_block},
     "Table 'Scripte': its properties have a name that is longer than their list of "
     "names."},
    {"property_record_length", "library_2003", "23:cd0=0a", {property_block},
     "Table 'Scripte': its properties have a record that does not fit its block."},
    {"property_name_absent", "library_2003", "23:cd4=05", {property_name},
     "Table 'Scripte': its properties use the name 5 of 2."},
    {"property_of_no_column", "library_2003", "23:cce=58", {property_column},
     "Table 'Scripte' has properties for column 'SetIX', which is not there.", warning},

    // Jet 3, pages of 2048 bytes: Table1 is page 29 (rows 31, trees 32 and 33)
    {"jet3_row_count", "testV1997", "29:00c=07", {row_count},
     "Table 'Table1' has 2 rows, but its definition says 7."},
    {"jet3_free_field", "testV1997", "28:002=cb", {free_field},
     "Page 28 (the rows of table 'MSysModules2') has 1994 free bytes, but says 1995."},
    {"jet3_row_columns", "testV1997", "28:7d6=ff", {row_columns},
     "Table 'MSysModules2', page 28, row 0 has 255 columns, its table at most 8."},
    {"jet3_index_row", "testV1997", "32:0fd=07", {index_entry_missing, index_entry_extra},
     "Table 'Table1', page 31, row 0 has no entry in index 'B' of table 'Table1'."},
    {"jet3_index_key", "testV1997", "11:0fc=01", {index_key, index_duplicate},
     "Table 'MSysObjects', page 18, row 8 has an entry that does not fit its values in "
     "index 'Id' of table 'MSysObjects'."},
    {"jet3_definition_end", "testV1997", "22:163=fe", {definition_end},
     "Table 'MSysModules2': the definition on page 22 does not end with its mark."},

    // relations
    {"relation_partner_number", "library_2003", "50:198=00", {relation_partner},
     "The index '.rB' of table 'Sets' belongs to a relation with index 0 of table "
     "'CVs', which does not name it back."},
    {"relation_partner_table", "library_2003", "50:19c=3e", {relation_partner},
     "The index '.rB' of table 'Sets' belongs to a relation with index 2 of table "
     "'Scriptstates', which does not name it back."},
    {"relation_partner_nowhere", "library_2003", "50:19c=28", {relation_partner},
     "The index '.rB' of table 'Sets' belongs to a relation with the table on page 40, "
     "which is not there."},
    {"relation_sides", "library_2003", "50:197=02", {relation_side},
     "The index '.rB' of table 'Sets' and its partner are not the two sides of a "
     "relation."},
    {"relation_cascade_of_one_side", "library_2003", "50:1a0=01", {relation_cascade},
     "The index 'SetsCVs' of table 'CVs' and its partner, the index '.rB' of table "
     "'Sets', differ in what they cascade."},
    {"relation_cascade_not_in_rows", "library_2003", "50:1a0=01 54:1f4=01", {relation_cascade},
     "Relation 'SetsCVs' has an index that cascades otherwise."},
    {"relation_not_enforced", "library_2003", "65:fb5=02", {relation_index},
     "Relation 'SetsCVs' is not enforced, but has an index."},
    {"relation_without_index", "library_2003", "54:1f6=00", {relation_partner, relation_index},
     "Relation 'SetsCVs' is enforced, but has no index."},
    {"relation_to_keys_that_repeat", "library_2003", "50:119=88", {relation_index},
     "The index 'SetsCVs' of table 'CVs' and its partner, the index '.rB' of table "
     "'Sets', make a relation to keys that may repeat."},
    {"relation_rows_missing", "library_2003", "65:fb9=02", {relation_rows},
     "Relation 'SetsCVs' has rows that do not fit together."},
    {"relation_column_absent", "library_2003", "65:fdd=58", {relation_rows},
     "Relation 'SetsCVs' names a column that is not there."},
    {"relation_of_other_columns", "library_2003", "65:fe7=520065007300430056", {relation_index},
     "Relation 'SetsCVs' leads to an index over other columns."},
    {"relation_types", "library_2003", "59:070=06", {relation_types},
     "The index 'CVSetIDScripte' of table 'Scripte' and its partner, the index '.rC' of "
     "table 'Sets', stand on columns of other types."},
    {"relation_orphan", "library_2003", "101:d59=00 66:1e4=00", {relation_orphan},
     "Table 'Scripte', page 101, row 20 refers to a row of table 'Sets' that is not "
     "there (relation 'CVSetIDScripte').", content},
};
// clang-format on

} // namespace

std::span<const Damage> damages() { return all; }

} // namespace jet::check
