# What every target of the tree shares: warnings, sanitizers, and the stage of
# public headers, so that inside as outside an include reads <Tellurion/BString.h>.

add_library(mapanchor_options INTERFACE)
target_compile_options(mapanchor_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2
    # The staged folder GeoCalc links to files in one of the same name in lower case.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-nonportable-include-path>
    $<$<BOOL:${MAPANCHOR_WERROR}>:-Werror>)
if(MAPANCHOR_SANITIZERS)
    add_compile_options(-fsanitize=${MAPANCHOR_SANITIZERS} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${MAPANCHOR_SANITIZERS})
    if(MAPANCHOR_SANITIZERS MATCHES "undefined")
        add_compile_options(-fno-sanitize-recover=undefined)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Instrumented code of the standard library looks uninitialised to it.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    add_compile_definitions(_FORTIFY_SOURCE=2)
endif()
add_compile_options(-fstack-protector-strong)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    add_compile_definitions(_FILE_OFFSET_BITS=64)  # for files above 2 GiB
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86.*|AMD64)$")
        # Its older unit rounds twice, and the last digit would differ from that of other machines.
        add_compile_options(-msse2 -mfpmath=sse)
    endif()
endif()

# Installed headers are seen by everybody; the others only by the libraries of the tree
# and by tests of their parts.
set(MAPANCHOR_STAGE ${PROJECT_BINARY_DIR}/include)
set(MAPANCHOR_PRIVATE_STAGE ${PROJECT_BINARY_DIR}/private-include)

function(mapanchor_link_headers stage folder)
    file(MAKE_DIRECTORY ${stage}/${folder})
    foreach(header IN LISTS ARGN)
        get_filename_component(name ${header} NAME)
        get_filename_component(path ${header} ABSOLUTE)
        file(CREATE_LINK ${path} ${stage}/${folder}/${name} SYMBOLIC)
    endforeach()
endfunction()

# mapanchor_public_headers(<Folder> <header>...): stages and installs headers of the
# current folder as <Folder/header>.
function(mapanchor_public_headers folder)
    mapanchor_link_headers(${MAPANCHOR_STAGE} ${folder} ${ARGN})
    install(FILES ${ARGN} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT dev)
    foreach(header IN LISTS ARGN)
        get_filename_component(name ${header} NAME)
        set_property(GLOBAL APPEND PROPERTY MAPANCHOR_PUBLIC_HEADERS ${folder}/${name})
    endforeach()
endfunction()

# The same for headers that other libraries of the tree see and nobody else.
function(mapanchor_stage_headers folder)
    mapanchor_link_headers(${MAPANCHOR_PRIVATE_STAGE} ${folder} ${ARGN})
endfunction()

# What a module and the library that loads it must agree in.
set(MAPANCHOR_SOVERSION 0)
set(MAPANCHOR_MODULE_DEFINITIONS
    MAPANCHOR_SOVERSION="${MAPANCHOR_SOVERSION}" MAPANCHOR_MODULE_VERSION="${PROJECT_VERSION}")
# A function that moved to a module without its counterpart here shows when it is linked.
set(MAPANCHOR_ALL_DEFINED)
if(NOT MAPANCHOR_SANITIZERS)
    set(MAPANCHOR_ALL_DEFINED LINKER:--no-undefined)
endif()

# mapanchor_libraries_below(<variable> <library>): its name and those of all that are loaded with it,
# each behind what it needs, parted by spaces. One that says itself where its own libraries are is left
# to the loader; empty where the library does, and where the loader of its machine does not run here.
function(mapanchor_libraries_below variable library)
    set(${variable} "" PARENT_SCOPE)
    get_target_property(file ${library} LOCATION)
    execute_process(COMMAND ldd ${file} OUTPUT_VARIABLE files ERROR_QUIET)
    string(REGEX MATCHALL "=> /[^ \n]+" files "${files}")
    list(TRANSFORM files REPLACE "=> " "")
    execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${file} ${files} OUTPUT_VARIABLE headers ERROR_QUIET)
    string(REGEX MATCHALL "file format|(NEEDED|SONAME) +[^ \n]+|R(UN)?PATH" facts "${headers};file format")
    set(names)
    set(needs)
    set(pairs)
    foreach(fact IN LISTS facts)
        string(REGEX REPLACE "^.* " "" value "${fact}")
        if(fact MATCHES "NEEDED")
            string(APPEND needs "${value} <name>\n")
        elseif(fact MATCHES "SONAME")
            set(name ${value})
        elseif(fact MATCHES "PATH")
            set(own_folders TRUE)
        else()  # the end of the library before
            if(name AND NOT own_folders)
                list(APPEND names ${name})
                string(REPLACE "<name>" ${name} needs "${needs}")
                string(APPEND pairs "${needs}")
            elseif(name AND NOT names)
                return()
            endif()
            set(name)
            set(needs)
            set(own_folders)
        endif()
    endforeach()
    if(NOT names)
        return()
    endif()
    list(GET names 0 first)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${first}.needs "${pairs}")
    execute_process(COMMAND tsort ${CMAKE_CURRENT_BINARY_DIR}/${first}.needs OUTPUT_VARIABLE sorted ERROR_QUIET)
    string(REGEX MATCHALL "[^\n]+" sorted "${sorted}")
    set(below ${first})
    foreach(name IN LISTS sorted)
        if(name IN_LIST names AND NOT name STREQUAL first)
            list(APPEND below ${name})
        endif()
    endforeach()
    list(JOIN below " " below)
    set(${variable} "${below}" PARENT_SCOPE)
endfunction()

# mapanchor_load_on_demand(<target> <library> <forwarders>): the library is loaded by the first call
# of one of its functions, which the file of forwarders defines. Linked as any other where it is a
# part of one library with everything, or has no name that a loader would find.
function(mapanchor_load_on_demand target library forwarders)
    get_target_property(file ${library} LOCATION)
    execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${file} OUTPUT_VARIABLE header ERROR_QUIET)
    if(NOT MAPANCHOR_MODULES OR NOT header MATCHES "SONAME +([^ \n]+)")
        target_link_libraries(${target} PRIVATE ${library})
        return()
    endif()
    set(name ${CMAKE_MATCH_1})
    mapanchor_libraries_below(below ${library})
    set_source_files_properties(${forwarders} TARGET_DIRECTORY ${target} PROPERTIES
        COMPILE_DEFINITIONS "MAPANCHOR_LIBRARY=\"${name}\";MAPANCHOR_LIBRARIES_BELOW=\"${below}\""
        SKIP_PRECOMPILE_HEADERS ON)
    target_sources(${target} PRIVATE ${forwarders})
    set_property(GLOBAL PROPERTY MAPANCHOR_LOADED_BY_${target} ${name})
    target_include_directories(${target} SYSTEM PRIVATE
        $<TARGET_PROPERTY:${library},INTERFACE_INCLUDE_DIRECTORIES>)
endfunction()

# What is loaded at run time and so linked by nobody: targets that run something depend on it.
add_custom_target(mapanchor_modules)

# mapanchor_module(<name> SOURCES ... LINK ...): the file libmapanchor-<name>.so.0, which the
# library loads at first use.
function(mapanchor_module name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    set(target mapanchor_${name}_module)
    add_library(${target} SHARED ${arg_SOURCES})
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME mapanchor-${name} VERSION ${PROJECT_VERSION} SOVERSION ${MAPANCHOR_SOVERSION}
        INSTALL_RPATH "$<$<NOT:$<BOOL:${MAPANCHOR_DEBIAN_PACKAGES}>>:$ORIGIN>")
    add_dependencies(mapanchor_modules ${target})
    set_property(GLOBAL APPEND PROPERTY MAPANCHOR_MODULE_TARGETS ${target})
    target_compile_definitions(${target} PRIVATE ${MAPANCHOR_MODULE_DEFINITIONS})
    target_link_options(${target} PRIVATE ${MAPANCHOR_ALL_DEFINED})
    target_link_libraries(${target} PRIVATE ${arg_LINK} mapanchor_options)
    set(component ${name})
    if(name STREQUAL "tool")
        set(component gdal)  # both need GDAL
    elseif(name STREQUAL "widgets")
        set(component pdf)
    endif()
    install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component} NAMELINK_SKIP)
endfunction()
