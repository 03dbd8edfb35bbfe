# The SDK: the DLL, its import library, the public headers, krhost.exe, the
# CMake package that gives module authors the target Kestrune::kr1st and
# kestrune_add_module(), the guides with the API reference, and the sample
# modules' sources. "cmake --install" puts it in a prefix; the target
# "package" zips it as kestrune-sdk-<version>-win64.zip.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS kr1st EXPORT KestruneTargets
  RUNTIME DESTINATION bin
  ARCHIVE DESTINATION lib
  LIBRARY DESTINATION lib)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/ DESTINATION include FILES_MATCHING PATTERN "*.h")
install(EXPORT KestruneTargets NAMESPACE Kestrune:: DESTINATION lib/cmake/Kestrune)
install(FILES ${CMAKE_SOURCE_DIR}/cmake/toolchain-mingw64.cmake ${CMAKE_SOURCE_DIR}/cmake/KestruneModule.cmake
  ${CMAKE_SOURCE_DIR}/cmake/KestruneApiVersion.cpp ${CMAKE_SOURCE_DIR}/cmake/KestruneVersion.rc.in
  DESTINATION lib/cmake/Kestrune)
install(PROGRAMS ${CMAKE_SOURCE_DIR}/cmake/wine-run.sh DESTINATION lib/cmake/Kestrune)

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/KestruneConfig.cmake.in
  ${CMAKE_BINARY_DIR}/KestruneConfig.cmake INSTALL_DESTINATION lib/cmake/Kestrune)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KestruneConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KestruneConfig.cmake ${CMAKE_BINARY_DIR}/KestruneConfigVersion.cmake
  DESTINATION lib/cmake/Kestrune)

install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/ DESTINATION share/doc/kestrune FILES_MATCHING PATTERN "*.md")
install(FILES ${CMAKE_SOURCE_DIR}/CHANGELOG.md DESTINATION share/doc/kestrune OPTIONAL)
install(FILES ${CMAKE_SOURCE_DIR}/samples/CMakeLists.txt ${CMAKE_SOURCE_DIR}/samples/KrSampleShapes.cpp
  ${CMAKE_SOURCE_DIR}/samples/KrSampleGreeter.cpp DESTINATION samples)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME kestrune-sdk)
set(CPACK_PACKAGE_VENDOR Kestrune)
set(CPACK_PACKAGE_FILE_NAME kestrune-sdk-${PROJECT_VERSION}-win64)
# The zip holds bin/, include/, lib/, share/ and samples/ at its top: it unpacks into any folder.
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
include(CPack)
