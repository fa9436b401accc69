# Helpers by which a new source file, or a whole folder's first one, needs no edit of CMake files.

# source_files(<variable> <folder>...)
# Sets the variable to the .cpp files that lie directly in the folders; empty when there is none.
function(source_files variable)
  set(patterns "")
  foreach(folder IN LISTS ARGN)
    list(APPEND patterns "${PROJECT_SOURCE_DIR}/${folder}/*.cpp")
  endforeach()
  file(GLOB found CONFIGURE_DEPENDS ${patterns})
  set(${variable} "${found}" PARENT_SCOPE)
endfunction()

# source_trees(<variable> <folder>...)
# The same for the folders and everything below them.
function(source_trees variable)
  set(patterns "")
  foreach(folder IN LISTS ARGN)
    list(APPEND patterns "${PROJECT_SOURCE_DIR}/${folder}/*.cpp")
  endforeach()
  file(GLOB_RECURSE found CONFIGURE_DEPENDS ${patterns})
  set(${variable} "${found}" PARENT_SCOPE)
endfunction()

# link_existing(<target> <PRIVATE|PUBLIC> <library>...)
# Links those of our libraries that have sources.
function(link_existing target scope)
  foreach(library IN LISTS ARGN)
    if(TARGET ${library})
      target_link_libraries(${target} ${scope} ${library})
    endif()
  endforeach()
endfunction()

# install_existing(<target> <folder>)
function(install_existing target folder)
  if(TARGET ${target})
    install(TARGETS ${target} RUNTIME DESTINATION "${folder}" LIBRARY DESTINATION "${folder}")
  endif()
endfunction()

# refuse_undefined_symbols(<target>)
# A missing function is an error of the link, not of the first call.
function(refuse_undefined_symbols target)
  # Clang leaves the sanitizers' own symbols of a shared library to the program.
  if(WIN32 OR (SANITIZE AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU"))
    return()
  endif()
  target_link_options(${target} PRIVATE "LINKER:-z,defs")
endfunction()
