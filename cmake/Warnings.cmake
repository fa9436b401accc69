# project_warnings: for every target of ours. core_warnings: the stricter set of the libraries.

add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 warns of overlapping copies inside std::string's operator+ (bug 105329, fixed in 13).
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(project_warnings INTERFACE -Wno-restrict)
  endif()
  # When optimising, GCC 12 takes the unused end of a std::string's inner buffer for a variable that
  # was never set, and the sanitizers' checks hide other assignments from it. Clang (preset fuzz) and
  # clang-tidy's cppcoreguidelines-init-variables look for the real ones.
  target_compile_options(project_warnings INTERFACE -Wno-maybe-uninitialized)
else()
  # Clang counts this one to -Wconversion, GCC does not: both shall accept the same code.
  target_compile_options(project_warnings INTERFACE -Wno-sign-conversion)
endif()

add_library(core_warnings INTERFACE)
target_link_libraries(core_warnings INTERFACE project_warnings)
target_compile_options(core_warnings INTERFACE -Wold-style-cast)
