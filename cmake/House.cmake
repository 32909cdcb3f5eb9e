# The house: one target per folder of src, each linking only what lies below it.
#
#   house_library(platform/jet LINKS platform_files)
#
# makes the target platform_jet from the sources in src/platform/jet and stops with an error when a
# name in LINKS is not lower in the list of floors. Includes are written from src
# ("platform/jet/database.h"); the test house_includes holds each of them against the links.

set(house_floors
    platform_failure platform_files platform_timing
    platform_jet_collation platform_jet_check
    platform_jet_format platform_jet_pages platform_jet_index platform_jet_rows platform_jet_catalogue platform_jet
    platform_ado platform_serial platform_desktop
    app export_msgpack scripts_catalogue scripts store sim
    link_types link_serial link_transport link_jobs
    export ui_parts ui_desktop
    app_ui ui_compare link_ui sim_ui scripts_ui ui_main)

# Rooms on one floor that must not know each other.
set(house_rooms app_ui ui_compare link_ui sim_ui scripts_ui)

# Only the standard library and what lies below; no Qt.
set(house_without_qt platform_failure platform_files
    platform_jet_collation platform_jet_check platform_jet_format platform_jet_pages platform_jet_index platform_jet_rows
    platform_jet_catalogue platform_jet export_msgpack)

function(house_library folder)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINKS;EXTERNAL")
    string(REPLACE "/" "_" name ${folder})
    if(CV_SETS_FUZZ AND NOT name IN_LIST house_without_qt)
        return()
    endif()
    list(FIND house_floors ${name} floor)
    if(floor LESS 0)
        message(FATAL_ERROR "${folder} has no place in the house (cmake/House.cmake)")
    endif()
    foreach(below IN LISTS arg_LINKS)
        list(FIND house_floors ${below} below_floor)
        if(below_floor LESS 0 OR NOT below_floor LESS floor)
            message(FATAL_ERROR "${name} links ${below}, which does not lie below it")
        endif()
        if(name IN_LIST house_rooms AND below IN_LIST house_rooms)
            message(FATAL_ERROR "${name} and ${below} are rooms that do not know each other")
        endif()
    endforeach()
    if(arg_EXTERNAL MATCHES "Qt6::Widgets" AND NOT folder MATCHES "(^|/)ui(/|$)")
        message(FATAL_ERROR "${name}: only folders named ui know Qt Widgets")
    endif()
    if(arg_EXTERNAL MATCHES "Qt6::" AND name IN_LIST house_without_qt)
        message(FATAL_ERROR "${name} must not know Qt")
    endif()
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
    if(sources MATCHES "\\.cpp")
        add_library(${name} STATIC ${sources})
        target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
        target_link_libraries(${name} PUBLIC ${arg_LINKS} ${arg_EXTERNAL} PRIVATE house_options)
        if(CV_SETS_SANITIZE)
            target_link_options(${name} PUBLIC $<TARGET_PROPERTY:house_options,INTERFACE_LINK_OPTIONS>)
        endif()
        if(arg_EXTERNAL MATCHES "Qt6::")
            set_target_properties(${name} PROPERTIES AUTOMOC ON)
            target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
        endif()
    else()
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${CMAKE_SOURCE_DIR}/src)
        target_link_libraries(${name} INTERFACE ${arg_LINKS} ${arg_EXTERNAL})
    endif()
    set_property(GLOBAL APPEND PROPERTY house_links "${name}=${arg_LINKS}")
endfunction()

# Tests of one folder: tests/FOLDER, program test_FOLDER. WINDOWS brings a main with a QApplication.
function(house_tests folder)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WINDOWS" "" "LINKS;EXTERNAL")
    string(REPLACE "/" "_" name ${folder})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/tests/${folder}/*.h)
    if(NOT sources MATCHES "\\.cpp")
        return()
    endif()
    add_executable(test_${name} ${sources})
    target_include_directories(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(test_${name} PRIVATE ${arg_LINKS} ${arg_EXTERNAL} GTest::gmock house_test_options)
    if(arg_WINDOWS)
        set_target_properties(test_${name} PROPERTIES AUTOMOC ON)
        target_sources(test_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/window_main.cpp)
        target_link_libraries(test_${name} PRIVATE Qt6::Widgets Qt6::Test)
    else()
        target_link_libraries(test_${name} PRIVATE GTest::gmock_main)
    endif()
    target_compile_definitions(test_${name} PRIVATE QT_NO_KEYWORDS
        CV_SETS_SAMPLES="${CV_SETS_SAMPLES}" CV_SETS_BIN="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    gtest_discover_tests(test_${name} TEST_PREFIX "${folder}: " DISCOVERY_TIMEOUT 60
        PROPERTIES SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]" TIMEOUT 3600)
endfunction()
