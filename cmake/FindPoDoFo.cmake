# PoDoFo 0.9, whose headers do not say where the library is: PoDoFo::PoDoFo.
find_path(PODOFO_INCLUDE_DIR podofo/podofo.h)
find_library(PODOFO_LIBRARY podofo)
mark_as_advanced(PODOFO_INCLUDE_DIR PODOFO_LIBRARY)

# 0.10 moved the header of the version.
foreach(folder base/ "" auxiliary/)
    set(header ${PODOFO_INCLUDE_DIR}/podofo/${folder}podofo_config.h)
    if(NOT PoDoFo_VERSION AND EXISTS ${header})
        file(STRINGS ${header} lines REGEX "define PODOFO_VERSION_(MAJOR|MINOR|PATCH) +[0-9]+")
        string(REGEX MATCHALL "[0-9]+" numbers "${lines}")
        list(JOIN numbers "." PoDoFo_VERSION)
    endif()
endforeach()
if(PODOFO_INCLUDE_DIR AND NOT PoDoFo_VERSION MATCHES "^0\\.9\\.")
    if(NOT PoDoFo_VERSION)
        set(PoDoFo_VERSION "of another version")
    endif()
    message(FATAL_ERROR "MapAnchor needs PoDoFo 0.9 (libpodofo-dev of Debian 12 and 13, or PODOFO_INCLUDE_DIR "
        "and PODOFO_LIBRARY), but ${PODOFO_INCLUDE_DIR} has PoDoFo ${PoDoFo_VERSION}.")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PoDoFo
    REQUIRED_VARS PODOFO_LIBRARY PODOFO_INCLUDE_DIR VERSION_VAR PoDoFo_VERSION
    REASON_FAILURE_MESSAGE "MapAnchor needs PoDoFo 0.9, in Debian libpodofo-dev.")
if(PoDoFo_FOUND AND NOT TARGET PoDoFo::PoDoFo)
    add_library(PoDoFo::PoDoFo UNKNOWN IMPORTED GLOBAL)
    set_target_properties(PoDoFo::PoDoFo PROPERTIES
        IMPORTED_LOCATION ${PODOFO_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${PODOFO_INCLUDE_DIR})
endif()
