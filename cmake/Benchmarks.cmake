# One program from all of bench/. It shares the tests' builders when they are built.
# bench/compare/ is for scripts/bench --compare, which builds bench/floor/ itself.

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

source_files(module_costs_sources bench/compare)
if(module_costs_sources AND TARGET quenraDataSourcesFile AND NOT WIN32)
  add_executable(module_costs ${module_costs_sources})
  target_include_directories(module_costs PRIVATE src)
  target_link_libraries(module_costs PRIVATE project_warnings)
  target_compile_definitions(module_costs PRIVATE
    MODULE_FILE="$<TARGET_FILE:quenraDataSourcesFile>")
  add_dependencies(module_costs quenraDataSourcesFile)
  link_existing(module_costs PRIVATE quenraCom quenraHost)
endif()
