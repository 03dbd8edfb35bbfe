# The SDK: the DLL, its import library, the public headers, krhost.exe and
# the CMake package that gives module authors the target Kestrune::kr1st and
# kestrune_add_module().
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS kr1st EXPORT KestruneTargets
  RUNTIME DESTINATION bin
  ARCHIVE DESTINATION lib
  LIBRARY DESTINATION lib)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/ DESTINATION include FILES_MATCHING PATTERN "*.h")
install(EXPORT KestruneTargets NAMESPACE Kestrune:: DESTINATION lib/cmake/Kestrune)
install(FILES ${CMAKE_SOURCE_DIR}/cmake/toolchain-mingw64.cmake ${CMAKE_SOURCE_DIR}/cmake/KestruneModule.cmake
  ${CMAKE_SOURCE_DIR}/cmake/KestruneApiVersion.cpp
  DESTINATION lib/cmake/Kestrune)
install(PROGRAMS ${CMAKE_SOURCE_DIR}/cmake/wine-run.sh DESTINATION lib/cmake/Kestrune)

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/KestruneConfig.cmake.in
  ${CMAKE_BINARY_DIR}/KestruneConfig.cmake INSTALL_DESTINATION lib/cmake/Kestrune)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KestruneConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KestruneConfig.cmake ${CMAKE_BINARY_DIR}/KestruneConfigVersion.cmake
  DESTINATION lib/cmake/Kestrune)
