# Tests of the companion program.
find_package(nlohmann_json 3.11 REQUIRED)

add_library(skein_test_support STATIC
  "${PROJECT_SOURCE_DIR}/fuzz/all_verbs.cc" unit/inventory_image.cc unit/verb_runner.cc)
target_include_directories(skein_test_support PUBLIC unit "${PROJECT_SOURCE_DIR}/fuzz")
target_link_libraries(skein_test_support PUBLIC skein_lib)
skeinmake_configure(skein_test_support)

set(skein_test_sources
  unit/reader_framing_test.cc
  unit/reader_inventory_check_test.cc
  unit/reader_inventory_view_test.cc
  unit/reader_mapped_file_test.cc
  unit/reader_odd_files_test.cc
  unit/reader_text_test.cc
  unit/reader_tree_diff_test.cc
  unit/reader_tree_walk_test.cc
  unit/skein_annotate_test.cc
  unit/skein_decompile_test.cc
  unit/skein_diff_report_test.cc
  unit/skein_dump_test.cc
  unit/skein_failing_output_test.cc
  unit/skein_hostile_test.cc
  unit/skein_interrupted_test.cc
  unit/skein_odd_records_test.cc
  unit/skein_output_test.cc
  unit/skein_round_trip_test.cc
  unit/skein_stats_test.cc
  unit/skein_xml_memory_test.cc
  unit/written_inventory.cc)
skeinmake_unit_tests(skein_unit_tests ${skein_test_sources})
target_link_libraries(skein_unit_tests
  PRIVATE skein_test_support nlohmann_json::nlohmann_json PkgConfig::LIBXML2)
set_source_files_properties(unit/skein_hostile_test.cc PROPERTIES
  COMPILE_DEFINITIONS SKEIN_CORPUS="${PROJECT_SOURCE_DIR}/fuzz/seeds/inventory_view")

add_test(NAME skein_schemas
  COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/skein_schema_test.py"
    --skein "$<TARGET_FILE:skein>" --schemas "${PROJECT_SOURCE_DIR}/docs"
    --inventories "${PROJECT_SOURCE_DIR}/fuzz/seeds/inventory_view")
add_test(NAME skein_streams
  COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/skein_streams_test.py"
    --skein "$<TARGET_FILE:skein>"
    --inventories "${PROJECT_SOURCE_DIR}/fuzz/seeds/inventory_view")
add_test(NAME skein_system
  COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/skein_system_test.py"
    --skein "$<TARGET_FILE:skein>"
    --inventories "${PROJECT_SOURCE_DIR}/fuzz/seeds/inventory_view")
