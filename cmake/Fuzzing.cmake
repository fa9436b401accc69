# Each fuzz/<Name>Fuzz.cpp is a program of its own. With BUILD_FUZZERS (clang++) it is a fuzzer;
# otherwise a small main() runs it over the files of fuzz/corpus/<Name>Fuzz, so that every test
# run keeps the targets compiling and the known inputs passing.

file(GLOB fuzz_sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/fuzz/*Fuzz.cpp")
if(WIN32)
  # What the system itself does there.
  list(FILTER fuzz_sources EXCLUDE REGEX "PosixFuzz\\.cpp$")
endif()
set(fuzz_driver "${PROJECT_SOURCE_DIR}/fuzz/StandaloneMain.cpp")

add_custom_target(fuzzers)
foreach(source IN LISTS fuzz_sources)
  cmake_path(GET source STEM name)
  set(corpus "${PROJECT_SOURCE_DIR}/fuzz/corpus/${name}")
  if(NOT IS_DIRECTORY "${corpus}")
    set(corpus "")
  endif()
  add_executable(${name} "${source}")
  target_include_directories(${name} PRIVATE src "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE project_warnings Boost::filesystem)
  link_existing(${name} PRIVATE textcore programcore quenraHost)
  add_dependencies(fuzzers ${name})
  if(BUILD_FUZZERS)
    # The search looks at what the code under test does, not at the checks.
    target_compile_options(${name} PRIVATE -fno-sanitize=fuzzer-no-link)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    # New inputs go to the build tree; the known ones are only read.
    set(findings "${CMAKE_BINARY_DIR}/findings/${name}")
    file(MAKE_DIRECTORY "${findings}")
    add_test(NAME ${name} COMMAND ${name}
      -max_total_time=20 -max_len=4096 "-artifact_prefix=${findings}-" "${findings}" ${corpus})
  else()
    target_sources(${name} PRIVATE "${fuzz_driver}")
    add_test(NAME ${name} COMMAND ${name} ${corpus})
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endforeach()
