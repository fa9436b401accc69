# Packages: a .deb, and a .zip for Windows, each with program, module, host library, documentation
# and examples.
#
#   cpack --config build/release/CPackConfig.cmake

if(WIN32)
  set(documentation_folder ".")
  install(PROGRAMS packaging/register.cmd packaging/unregister.cmd
    DESTINATION "${CMAKE_INSTALL_BINDIR}")
else()
  set(documentation_folder "share/doc/texttables")
endif()
install(FILES README.md DESTINATION "${documentation_folder}")
install(DIRECTORY docs examples hosts DESTINATION "${documentation_folder}")

set(CPACK_PACKAGE_NAME "texttables")
set(CPACK_PACKAGE_VENDOR "quenra")
set(CPACK_PACKAGE_CONTACT "The texttables developers <texttables@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
  "A data source that makes folders of text files look like typed tables to a host
application, and a program that shows and writes such tables.")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "texttables-${PROJECT_VERSION}-windows-x64")
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION "science")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  # The host library is in the package itself.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
endif()
include(CPack)

# The package is made, installed into an empty place, and its program run from there. Packages of
# sanitized builds are for nobody.
if(BUILD_TESTING AND TARGET texttables AND NOT SANITIZE)
  find_program(QUENRA_DPKG_DEB dpkg-deb)
  if(QUENRA_DPKG_DEB OR WIN32)
    add_test(NAME package
      COMMAND "${PROJECT_SOURCE_DIR}/scripts/test-package" "${CMAKE_BINARY_DIR}")
    set_tests_properties(package PROPERTIES TIMEOUT 900 RESOURCE_LOCK registry)
  endif()
  # What is installed without a package serves builders of hosts as well.
  add_test(NAME installed_hosts
    COMMAND "${PROJECT_SOURCE_DIR}/scripts/test-installed-hosts" "${CMAKE_BINARY_DIR}")
  set_tests_properties(installed_hosts PROPERTIES TIMEOUT 900 RESOURCE_LOCK registry)
endif()
