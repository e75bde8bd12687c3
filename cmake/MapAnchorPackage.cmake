# Debian packages by CPack, one a component: the libraries, their modules that need GDAL or
# PoDoFo and Qt, what is needed to build on them, and the tool. Their dependencies on other packages are those of the binaries.
get_target_property(soversion MapAnchor SOVERSION)
set(runtime_package libmapanchor${soversion})
set(dev_package libmapanchor-dev)
set(tool_package mapanchor)
set(gdal_package ${runtime_package}-gdal)
set(pdf_package ${runtime_package}-pdf)
set(components runtime gdal pdf dev tool)
if(NOT MAPANCHOR_MODULES)
    set(components runtime dev tool)
endif()
set(maintainer "The MapAnchor developers <maintainers@mapanchor.example>")

set(changelog ${PROJECT_BINARY_DIR}/packaging/changelog.gz)
add_custom_command(OUTPUT ${changelog}
    COMMAND sh -c "\"$1\" \"$2\" \"$3\" | gzip -9n > \"$4\"" sh ${PROJECT_SOURCE_DIR}/packaging/changelog.sh
            ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${maintainer} ${changelog}
    DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/packaging/changelog.sh VERBATIM)
add_custom_target(package_documents ALL DEPENDS ${changelog})
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packaging)

foreach(component IN LISTS components)
    set(name ${${component}_package})
    install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright ${changelog}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
    if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/lintian/${component})
        install(FILES ${PROJECT_SOURCE_DIR}/packaging/lintian/${component} RENAME ${name}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component})
    endif()
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${upper}_FILE_NAME DEB-DEFAULT)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL ${components})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_CONTACT ${maintainer})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What the libraries are called in the dependencies of others, and what the linker must
# know when they come and go.
set(control ${PROJECT_BINARY_DIR}/packaging)
set(version ">= ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
file(WRITE ${control}/shlibs
    "libMapAnchor ${soversion} ${runtime_package} (${version})\nlibTellurion ${soversion} ${runtime_package} (${version})\n")
file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${control}/shlibs ${control}/triggers)

set(purpose "MapAnchor tells in which coordinate system a raster or a map is, and how its
pixels relate to it: world files, RSF, TAB, ERS, GeoTIFF, charts, frames,
MrSID, JPEG 2000, ECW and geospatial PDF.
.
This package holds")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${purpose} the shared libraries.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)

if(MAPANCHOR_MODULES)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "${gdal_package}, ${pdf_package}")
    set(CPACK_DEBIAN_TOOL_PACKAGE_RECOMMENDS "${gdal_package}, ${pdf_package}")
endif()
set(CPACK_DEBIAN_GDAL_DESCRIPTION "${purpose} the module that reads rasters through GDAL.")
set(CPACK_DEBIAN_PDF_DESCRIPTION "${purpose} the module for geospatial PDF.")
# The modules are loaded by their names and linked by nobody, but are in the linker's folder.
file(WRITE ${control}/gdal/shlibs "libmapanchor-gdal ${soversion} ${gdal_package} (${version})\n"
    "libmapanchor-tool ${soversion} ${gdal_package} (${version})\n")
file(WRITE ${control}/pdf/shlibs "libmapanchor-pdf ${soversion} ${pdf_package} (${version})\n"
    "libmapanchor-widgets ${soversion} ${pdf_package} (${version})\n")
set(CPACK_DEBIAN_GDAL_PACKAGE_CONTROL_EXTRA ${control}/gdal/shlibs ${control}/triggers)
set(CPACK_DEBIAN_PDF_PACKAGE_CONTROL_EXTRA ${control}/pdf/shlibs ${control}/triggers)
foreach(module GDAL PDF)
    set(CPACK_DEBIAN_${module}_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_${module}_PACKAGE_DEPENDS "${runtime_package} (= ${PROJECT_VERSION})")
    set(CPACK_DEBIAN_${module}_PACKAGE_SHLIBDEPS ON)
endforeach()

set(CPACK_DEBIAN_DEV_DESCRIPTION "${purpose} what is needed to build on the libraries.")
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${runtime_package} (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_TOOL_DESCRIPTION "${purpose} the command line.")
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${runtime_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
include(CPack)
