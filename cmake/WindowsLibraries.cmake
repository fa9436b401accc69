# The libraries of the cross build, under the names that find_package gives them elsewhere:
# headers of the build machine's packages, each in a folder of its own so that no other system
# header is found, and the archives that scripts/build-windows has built.

set(QUENRA_WINDOWS_LIBRARIES "$ENV{QUENRA_WINDOWS_LIBRARIES}" CACHE PATH
  "The folder that scripts/build-windows has filled")
if(NOT EXISTS "${QUENRA_WINDOWS_LIBRARIES}/include/boost/version.hpp")
  message(FATAL_ERROR "Build for Windows with scripts/build-windows, which gets the libraries.")
endif()

foreach(name Boost::system CLI11::CLI11 nlohmann_json::nlohmann_json)
  add_library(${name} INTERFACE IMPORTED)
  target_include_directories(${name} SYSTEM INTERFACE "${QUENRA_WINDOWS_LIBRARIES}/include")
endforeach()
target_compile_definitions(Boost::system INTERFACE BOOST_ALL_NO_LIB)

function(add_windows_archive name file)
  add_library(${name} STATIC IMPORTED)
  set_target_properties(${name} PROPERTIES
    IMPORTED_LOCATION "${QUENRA_WINDOWS_LIBRARIES}/lib/${file}")
  target_include_directories(${name} SYSTEM INTERFACE "${QUENRA_WINDOWS_LIBRARIES}/include")
  target_link_libraries(${name} INTERFACE ${ARGN})
endfunction()

add_windows_archive(Boost::filesystem libboost_filesystem.a Boost::system bcrypt)
target_compile_definitions(Boost::filesystem INTERFACE BOOST_FILESYSTEM_STATIC_LINK=1)
add_windows_archive(GTest::gtest libgtest.a)
add_windows_archive(GTest::gmock libgmock.a GTest::gtest)
add_windows_archive(GTest::gtest_main libgtest_main.a GTest::gtest)
