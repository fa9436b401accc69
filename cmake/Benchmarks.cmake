# One program from all of bench/. It shares the tests' builders when they are built.

source_files(benchmark_sources bench)
if(benchmark_sources)
  find_package(benchmark REQUIRED)
  add_executable(benchmarks ${benchmark_sources})
  target_include_directories(benchmarks PRIVATE src "${PROJECT_SOURCE_DIR}")
  target_link_libraries(benchmarks PRIVATE project_warnings benchmark::benchmark)
  link_existing(benchmarks PRIVATE textcore quenraCom quenraHost test_support)
endif()
