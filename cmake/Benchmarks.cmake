# One program from all of bench/. It shares the tests' builders when they are built.

source_files(benchmark_sources bench)
if(benchmark_sources)
  find_package(benchmark REQUIRED)
  add_executable(benchmarks ${benchmark_sources})
  target_include_directories(benchmarks PRIVATE src "${PROJECT_SOURCE_DIR}")
  target_link_libraries(benchmarks PRIVATE project_warnings benchmark::benchmark)
  # Generated files are kept there between runs.
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/bench-data")
  target_compile_definitions(benchmarks PRIVATE
    BENCHMARK_DATA_DIR="${CMAKE_BINARY_DIR}/bench-data")
  if(TARGET quenraDataSourcesFile)
    target_compile_definitions(benchmarks PRIVATE
      MODULE_FILE="$<TARGET_FILE:quenraDataSourcesFile>")
  endif()
  link_existing(benchmarks PRIVATE textcore quenraCom quenraHost test_support)
endif()
