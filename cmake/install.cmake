# What a user of the library finds after an install: both libraries, the headers of include/ and, since
# a front end calls the engine's classes directly, those of server/; the CMake package and the
# pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS quillpg_shared quillpg_static EXPORT quillpgTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/quillpg DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.def")
install(DIRECTORY server/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillpg/server
  FILES_MATCHING PATTERN "*.h" PATTERN "*.def")
if(TARGET quillpg_tool)
  install(TARGETS quillpg_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(QUILLPG_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/quillpg)
install(EXPORT quillpgTargets NAMESPACE quillpg:: DESTINATION ${QUILLPG_PACKAGE_DIR})
configure_package_config_file(cmake/quillpgConfig.cmake.in ${PROJECT_BINARY_DIR}/quillpgConfig.cmake
  INSTALL_DESTINATION ${QUILLPG_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quillpgConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/quillpgConfig.cmake ${PROJECT_BINARY_DIR}/quillpgConfigVersion.cmake
  DESTINATION ${QUILLPG_PACKAGE_DIR})
configure_file(cmake/quillpg.pc.in ${PROJECT_BINARY_DIR}/quillpg.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quillpg.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
