# What a program that hosts the module is built from: the public headers, the host library, the COM
# base, and the CMake package quenraTextFile that names them.
#
#   find_package(quenraTextFile REQUIRED)
#   target_link_libraries(my_host PRIVATE quenra::quenraCom)
#
# The package may be moved: its paths are relative to its own file.

# The public headers, below src. What is not here is the host library's own: the embedded objects are made by
# CreateComponentInstance, and the parts of coordinate reading, options and errors behind their
# headers are nobody else's.
file(GLOB QUENRA_PUBLIC_HEADERS CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/src"
  "${PROJECT_SOURCE_DIR}/src/host/interfaces/*.h"
  "${PROJECT_SOURCE_DIR}/src/host/com/*.h"
  "${PROJECT_SOURCE_DIR}/src/host/CoreSupport/*.h"
  "${PROJECT_SOURCE_DIR}/src/host/AppEventLog/*.h")
list(APPEND QUENRA_PUBLIC_HEADERS
  host/HostApi.h
  host/DataCore/DataAccessUtil.h host/DataCore/DataCoreUtil.h host/DataCore/LatLongFormat.h
  platform/CodePages.h platform/ComTypes.h platform/FileNames.h platform/LastError.h
  platform/LocaleInfo.h platform/Modules.h platform/OleAutomation.h platform/OleText.h
  platform/Registry.h platform/SingleThread.h platform/Threads.h)

if(NOT TARGET quenraHost OR NOT TARGET quenraCom OR NOT TARGET quenraDataSourcesFile)
  return()
endif()

install(TARGETS quenraHost quenraCom EXPORT quenraTextFileTargets
  RUNTIME DESTINATION "${QUENRA_MODULE_INSTALL_FOLDER}"
  LIBRARY DESTINATION "${QUENRA_MODULE_INSTALL_FOLDER}"
  ARCHIVE DESTINATION "${QUENRA_ARCHIVE_INSTALL_FOLDER}")
install(EXPORT quenraTextFileTargets NAMESPACE quenra::
  DESTINATION "${QUENRA_PACKAGE_INSTALL_FOLDER}")

include(CMakePackageConfigHelpers)
set(module_file
  "${QUENRA_MODULE_INSTALL_FOLDER}/quenraDataSourcesFile${CMAKE_SHARED_MODULE_SUFFIX}")
configure_package_config_file(cmake/quenraTextFileConfig.cmake.in
  "${CMAKE_CURRENT_BINARY_DIR}/quenraTextFileConfig.cmake"
  INSTALL_DESTINATION "${QUENRA_PACKAGE_INSTALL_FOLDER}"
  PATH_VARS module_file
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/quenraTextFileConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/quenraTextFileConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/quenraTextFileConfigVersion.cmake"
  DESTINATION "${QUENRA_PACKAGE_INSTALL_FOLDER}")

foreach(header IN LISTS QUENRA_PUBLIC_HEADERS)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES "src/${header}" DESTINATION "${QUENRA_HEADER_INSTALL_FOLDER}/${folder}")
endforeach()
