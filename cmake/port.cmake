# The platform's services on systems other than Windows.
file(GLOB port_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/port/*.cpp)
add_library(zr32port SHARED ${port_sources})
target_include_directories(
    zr32port
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src/port> $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
           $<INSTALL_INTERFACE:include>
)
target_link_libraries(zr32port PRIVATE zr32_flags)
if(ZR32PATH_FONTS)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(freetype REQUIRED IMPORTED_TARGET freetype2)
    pkg_check_modules(fontconfig REQUIRED IMPORTED_TARGET fontconfig)
    target_link_libraries(zr32port PRIVATE PkgConfig::freetype PkgConfig::fontconfig)
    target_compile_definitions(zr32port PRIVATE ZR32PORT_FONTS)
endif()
set_target_properties(zr32port PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
