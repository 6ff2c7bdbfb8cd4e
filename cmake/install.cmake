# Headers, libraries, a CMake package and a pkg-config file.
set(installed Zr32path zr32comm)
if(NOT WIN32)
    list(APPEND installed zr32port)
endif()
set_target_properties(Zr32path zr32comm PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS ${installed} EXPORT Zr32pathTargets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
)
install(FILES include/zr32path.h src/comm/zr32comm.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/zr32path DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(NOT WIN32)
    file(GLOB port_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/port/*.h)
    install(FILES ${port_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Zr32path)
install(EXPORT Zr32pathTargets NAMESPACE Zr32path:: DESTINATION ${package_dir})
configure_package_config_file(
    cmake/Zr32pathConfig.cmake.in ${CMAKE_BINARY_DIR}/Zr32pathConfig.cmake INSTALL_DESTINATION ${package_dir}
)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/Zr32pathConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/Zr32pathConfig.cmake ${CMAKE_BINARY_DIR}/Zr32pathConfigVersion.cmake
        DESTINATION ${package_dir}
)
set(pc_libs "-lZr32path")
if(NOT WIN32)
    string(APPEND pc_libs " -lzr32port")
endif()
configure_file(cmake/zr32path.pc.in ${CMAKE_BINARY_DIR}/zr32path.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/zr32path.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
