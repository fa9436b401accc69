# Three test programs, one ctest entry each:
#   unit_tests    platform, host and core, linked with them
#   module_tests  the built module through its exports alone
#   cli_tests     the built program alone
# and include_rules, which holds the includes of src/ and apps/ against the architecture.
# Each program writes its results to <build>/test-results/<name>.json, from which scripts/test counts.

find_package(GTest REQUIRED)

source_trees(support_sources tests/support)
source_trees(unit_sources
  tests/platform tests/host tests/reading tests/schema tests/inference)
source_trees(module_test_sources tests/module)
source_trees(cli_test_sources tests/cli)

# What every program with test helpers needs.
add_library(test_settings INTERFACE)
target_include_directories(test_settings INTERFACE
  "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/tests" "${PROJECT_SOURCE_DIR}")
target_compile_definitions(test_settings INTERFACE
  TEST_DATA_DIR="${PROJECT_SOURCE_DIR}/tests/data"
  EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples")
target_link_libraries(test_settings INTERFACE
  project_warnings Boost::filesystem Threads::Threads ${CMAKE_DL_LIBS})
link_existing(test_settings INTERFACE quenraHost quenraCom)
if(TARGET quenraDataSourcesFile)
  target_compile_definitions(test_settings INTERFACE
    MODULE_FILE="$<TARGET_FILE:quenraDataSourcesFile>")
endif()
if(TARGET texttables)
  target_compile_definitions(test_settings INTERFACE PROGRAM_FILE="$<TARGET_FILE:texttables>")
endif()

if(support_sources)
  add_library(test_support OBJECT ${support_sources})
  target_link_libraries(test_support PUBLIC test_settings GTest::gtest GTest::gmock)
endif()

function(add_test_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE
    test_settings GTest::gtest GTest::gmock GTest::gtest_main)
  # The tests of modules look up a string table that the program itself exports.
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  link_existing(${name} PRIVATE test_support)
  add_test(NAME ${name} COMMAND ${name}
    "--gtest_output=json:${CMAKE_BINARY_DIR}/test-results/${name}.json")
  set_tests_properties(${name} PROPERTIES TIMEOUT 900)
endfunction()

if(unit_sources)
  add_test_program(unit_tests ${unit_sources})
  link_existing(unit_tests PRIVATE textcore)
endif()

# Ended half-way by the tests of what then is on the disk. Its calls of the system go through its own
# definitions, which the libraries have to find.
source_files(fault_sources tests/faults)
if(unit_sources AND fault_sources AND NOT WIN32)
  add_executable(writing_faults ${fault_sources})
  target_link_libraries(writing_faults PRIVATE test_settings)
  link_existing(writing_faults PRIVATE textcore)
  set_target_properties(writing_faults PROPERTIES ENABLE_EXPORTS ON)
  add_dependencies(unit_tests writing_faults)
  target_compile_definitions(unit_tests PRIVATE
    WRITING_FAULTS_PROGRAM="$<TARGET_FILE:writing_faults>")
endif()

if(module_test_sources AND TARGET quenraDataSourcesFile)
  add_test_program(module_tests ${module_test_sources})
  add_dependencies(module_tests quenraDataSourcesFile)
endif()

if(cli_test_sources AND TARGET quenraDataSourcesFile AND TARGET texttables)
  find_package(nlohmann_json REQUIRED)
  add_test_program(cli_tests ${cli_test_sources})
  target_link_libraries(cli_tests PRIVATE nlohmann_json::nlohmann_json)
  add_dependencies(cli_tests quenraDataSourcesFile texttables)
endif()

if(NOT WIN32)
  add_test(NAME include_rules COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-includes")
endif()
