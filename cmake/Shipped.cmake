# What leaves the house: the version it carries, and how its image is made.

configure_file(${CMAKE_SOURCE_DIR}/cmake/planfold_version.h.in ${CMAKE_BINARY_DIR}/version/planfold_version.h)
add_library(house_version INTERFACE)
target_include_directories(house_version INTERFACE ${CMAKE_BINARY_DIR}/version)

define_property(TARGET PROPERTY PLANFOLD_SHIPS BRIEF_DOCS "Linked with its symbols, which are then put beside it")

# house_shipped(TARGET FILE name PRODUCT name DESCRIPTION text)
# On Windows the image has the version as a resource, which nothing can write to, and its symbols in a file of
# their own.
function(house_shipped target)
    if(NOT WIN32)
        return()
    endif()
    cmake_parse_arguments(arg "" "FILE;PRODUCT;DESCRIPTION" "" ${ARGN})
    string(REPLACE . , version_commas ${PROJECT_VERSION})
    cmake_path(GET arg_FILE STEM stem)
    set(file_type VFT_DLL)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
        set(file_type VFT_APP)
    endif()
    set(resource ${CMAKE_BINARY_DIR}/version/${target}.rc)
    configure_file(${CMAKE_SOURCE_DIR}/cmake/Version.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
    set_target_properties(${target} PROPERTIES PLANFOLD_SHIPS TRUE)

    set(image $<TARGET_FILE:${target}>)
    set(symbols ${CMAKE_BINARY_DIR}/symbols/${arg_FILE}.debug)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/symbols)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${image} ${symbols}
        COMMAND ${CMAKE_OBJCOPY} --strip-all --add-gnu-debuglink=${symbols} ${image}
        COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/cmake/seal.py ${image}
        VERBATIM)
endfunction()
