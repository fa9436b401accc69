# Settings that hold for every target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

# Program, module and host library side by side: the program finds both in its own folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# Libraries are looked for beside the file that needs them, in the build tree as where it is
# installed. A path that the installation would exchange is filled up with colons in the build tree,
# and each empty part of a path stands for the current folder: it would run a library from there.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")

# Where host library and module are installed, from the prefix and from the program's folder.
if(WIN32)
  set(QUENRA_MODULE_INSTALL_FOLDER "${CMAKE_INSTALL_BINDIR}")
  set(QUENRA_MODULE_FOLDER_FROM_PROGRAM ".")
  set(QUENRA_LIBRARY_PREFIX "")
  add_compile_definitions(UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
else()
  # A folder below the vendor's, where the loader never looks: packages need no refresh of its cache.
  # Not CMAKE_INSTALL_LIBDIR: the program finds this folder relative to its own, and Debian's
  # multi-arch name in it would only make that path longer.
  set(QUENRA_MODULE_INSTALL_FOLDER "lib/quenra/textfile")
  set(QUENRA_MODULE_FOLDER_FROM_PROGRAM "../lib/quenra/textfile")
  set(QUENRA_LIBRARY_PREFIX "lib")
endif()

# What a builder of hosts needs besides.
set(QUENRA_HEADER_INSTALL_FOLDER "include/quenra/textfile")
set(QUENRA_ARCHIVE_INSTALL_FOLDER "lib/quenra/textfile")
set(QUENRA_PACKAGE_INSTALL_FOLDER "lib/cmake/quenraTextFile")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

if(SANITIZE)
  add_compile_options(-fsanitize=${SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SANITIZE})
endif()
if(SANITIZE OR CMAKE_BUILD_TYPE STREQUAL "Debug")
  # Bounds and iterator checks of the standard library, without a change of its layout.
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
if(BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "BUILD_FUZZERS needs clang++ (use the preset fuzz)")
  endif()
  # Coverage counters for libFuzzer in every library; its main() comes with the targets alone. The
  # code compares character by character, where to trace comparisons tells nothing that the counters
  # do not, and takes a quarter of the time.
  add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
endif()
