# cmake --install: headers, both libraries, ravikTest with its data, and the files by which CMake and pkg-config find them.
include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ravik DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(TARGETS ravikShared ravikStatic EXPORT ravikTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS ravikTest RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET testData)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/testdata DESTINATION ${CMAKE_INSTALL_DATADIR}/ravik)
endif()

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/ravik)
install(EXPORT ravikTargets NAMESPACE ravik:: DESTINATION ${packageDir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ravikConfig.cmake.in ${PROJECT_BINARY_DIR}/ravikConfig.cmake
    INSTALL_DESTINATION ${packageDir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ravikConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ravikConfig.cmake ${PROJECT_BINARY_DIR}/ravikConfigVersion.cmake
    DESTINATION ${packageDir})

cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY
    ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig OUTPUT_VARIABLE ravikPcPrefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/ravik.pc.in ${PROJECT_BINARY_DIR}/ravik.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ravik.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
