# Three test programs, one ctest entry each:
#   unit_tests    platform, host and core, linked with them
#   module_tests  the built module through its exports alone
#   cli_tests     the built program alone
# and, on Windows, com_host_tests: the registered module. Besides include_rules, which holds the
# includes of src/ and apps/ against the architecture, and library_paths, which looks where the files
# that are built and installed look for libraries.
# Each program writes its results to <build>/test-results/<name>.json, from which scripts/test counts.

if(NOT WIN32)
  find_package(GTest REQUIRED)
endif()

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
  EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples"
  PROJECT_VERSION_TEXT="${PROJECT_VERSION}")
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

# Compiling the tests is most of the work of a check, and what they test is compiled as it is
# installed. The last -O counts.
if(SANITIZE)
  set(test_optimization -O0)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
  set(test_optimization -O1)
endif()

if(support_sources)
  add_library(test_support OBJECT ${support_sources})
  target_link_libraries(test_support PUBLIC test_settings GTest::gtest GTest::gmock)
  target_compile_options(test_support PRIVATE ${test_optimization})
endif()

# Under Wine a few tests are left out, each with its reason in this list.
set(test_filter "")
if(WIN32 AND CMAKE_CROSSCOMPILING)
  set(wine_differences "${PROJECT_SOURCE_DIR}/tests/windows/wine-differences.txt")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${wine_differences}")
  file(STRINGS "${wine_differences}" names REGEX "^[A-Z]")
  list(TRANSFORM names REPLACE " .*" "")
  list(JOIN names ":" names)
  set(test_filter "--gtest_filter=-${names}")
endif()

function(add_test_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE
    test_settings GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_options(${name} PRIVATE ${test_optimization})
  # The tests of modules look up a string table that the program itself exports.
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  link_existing(${name} PRIVATE test_support)
  # The path is relative, since a Windows program takes no other path of this system.
  add_test(NAME ${name} COMMAND ${name} "--gtest_output=json:test-results/${name}.json"
    ${test_filter} WORKING_DIRECTORY "${CMAKE_BINARY_DIR}")
  # Only a program that hangs takes so long, however slow the machine.
  set_tests_properties(${name} PROPERTIES TIMEOUT 1800)
  if(WIN32 AND NOT name STREQUAL "unit_tests")
    # There is one registry, and a registration changes what the program loads.
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK registry)
  endif()
endfunction()

if(unit_sources)
  add_test_program(unit_tests ${unit_sources})
  link_existing(unit_tests PRIVATE textcore)
  if(NOT WIN32)
    # Tables that scripts have made of its properties are held against it, and it says which locales
    # there are.
    target_link_libraries(unit_tests PRIVATE ICU::uc)
  endif()
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

# The hosts that are installed as examples. The tests run them, and hold what the documents quote
# against their sources.
if(TARGET quenraDataSourcesFile)
  enable_language(C)
  add_executable(text_table_host hosts/cpp/TextTableHost.cpp)
  target_link_libraries(text_table_host PRIVATE project_warnings quenraCom quenraHost)
  add_executable(plain_c_host hosts/c/main.c hosts/c/PlainCHost.c)
  target_link_libraries(plain_c_host PRIVATE project_warnings)
  if(NOT WIN32)
    target_link_libraries(plain_c_host PRIVATE quenraHost)
  endif()
  foreach(host text_table_host plain_c_host)
    target_compile_definitions(${host} PRIVATE MODULE_FILE="$<TARGET_FILE:quenraDataSourcesFile>")
  endforeach()
endif()

if(module_test_sources AND TARGET quenraDataSourcesFile)
  source_trees(snippet_sources tests/snippets)
  list(JOIN QUENRA_PUBLIC_HEADERS "," public_header_list)
  add_test_program(module_tests ${module_test_sources} ${snippet_sources})
  add_dependencies(module_tests quenraDataSourcesFile text_table_host plain_c_host)
  target_compile_definitions(module_tests PRIVATE
    SOURCE_FOLDER="${PROJECT_SOURCE_DIR}"
    PUBLIC_HEADERS="${public_header_list}"
    TEXT_TABLE_HOST="$<TARGET_FILE:text_table_host>"
    PLAIN_C_HOST="$<TARGET_FILE:plain_c_host>")
endif()

if(cli_test_sources AND TARGET quenraDataSourcesFile AND TARGET texttables)
  add_test_program(cli_tests ${cli_test_sources})
  target_link_libraries(cli_tests PRIVATE nlohmann_json::nlohmann_json)
  add_dependencies(cli_tests quenraDataSourcesFile texttables)
endif()

# The registered module in the hands of the system's COM, from C++ and from plain C.
if(WIN32 AND TARGET quenraDataSourcesFile)
  source_trees(com_host_sources tests/comhost)
  add_test_program(com_host_tests
    ${com_host_sources} hosts/c/PlainCHost.c tests/module/ModuleTest.cpp)
  add_dependencies(com_host_tests quenraDataSourcesFile)
endif()

# The Windows program gives the same tables as the one of the build machine.
if(WIN32 AND CMAKE_CROSSCOMPILING AND TARGET texttables AND TARGET quenraDataSourcesFile)
  add_test(NAME same_as_native
    COMMAND "${PROJECT_SOURCE_DIR}/scripts/compare-with-native" "$<TARGET_FILE:texttables>")
  add_test(NAME registration
    COMMAND "${PROJECT_SOURCE_DIR}/scripts/test-registration" "$<TARGET_FILE:texttables>")
  set_tests_properties(same_as_native registration PROPERTIES RESOURCE_LOCK registry TIMEOUT 1800)
endif()

if(NOT WIN32)
  add_test(NAME include_rules COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-includes")
  add_test(NAME library_paths
    COMMAND "${PROJECT_SOURCE_DIR}/scripts/check-library-paths" "${CMAKE_BINARY_DIR}")
endif()
