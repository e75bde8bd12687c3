# The CMake package MapAnchor (targets MapAnchor::MapAnchor, MapAnchor::Tellurion and, for C,
# MapAnchor::C) and the pkg-config files mapanchor and mapanchor-c.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/MapAnchor)
install(EXPORT MapAnchorTargets NAMESPACE MapAnchor:: DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/MapAnchorConfig.cmake.in
    ${PROJECT_BINARY_DIR}/MapAnchorConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/MapAnchorConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/MapAnchorConfig.cmake ${PROJECT_BINARY_DIR}/MapAnchorConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT dev)

foreach(name mapanchor mapanchor-c)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endforeach()
if(NOT MAPANCHOR_DEBIAN_PACKAGES)  # whose copyright file says it
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
endif()

# What the API reference and the comparison of the ABI go by.
get_property(public_headers GLOBAL PROPERTY MAPANCHOR_PUBLIC_HEADERS)
list(JOIN public_headers "\n" public_headers)
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/public-headers.txt CONTENT "${public_headers}\n")
