# The table of text keys is packed while building: the list in data/ is for people, the arrays are not.
set(collation_table ${CMAKE_BINARY_DIR}/generated/collation_table.inc)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/generated)
add_executable(collation_table ${CMAKE_SOURCE_DIR}/tools/collation_table.cpp)
target_include_directories(collation_table PRIVATE ${CMAKE_SOURCE_DIR}/src)
set_target_properties(collation_table PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/generated)
add_custom_command(OUTPUT ${collation_table}
    COMMAND collation_table ${CMAKE_SOURCE_DIR}/data/jet4-textkeys.tsv ${collation_table}
    DEPENDS collation_table ${CMAKE_SOURCE_DIR}/data/jet4-textkeys.tsv VERBATIM)
target_sources(platform_jet_collation PRIVATE ${collation_table})
target_include_directories(platform_jet_collation PRIVATE ${CMAKE_BINARY_DIR}/generated)
