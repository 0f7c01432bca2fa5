# The headers that most files ask for, compiled beforehand in the build for Windows. The native builds do without, and
# so see whether each file names what it needs.

set(asked_for_everywhere <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <ranges> <set> <span>
    <string> <string_view> <unordered_map> <utility> <variant> <vector>)

function(house_headers name)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "")
    add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE house_rules)
    # By this the compiler's cache can tell one set from another.
    target_compile_options(${name} PRIVATE -fpch-preprocess)
    target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()

if(WIN32)
    house_headers(portable_headers ${asked_for_everywhere})
    house_headers(window_headers ${asked_for_everywhere} <windows.h> <commctrl.h>)
endif()

# house_precompiled(SET target...): portable_headers for what knows no windows, window_headers for the rest.
function(house_precompiled set)
    if(NOT WIN32)
        return()
    endif()
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE -fpch-preprocess)
        target_precompile_headers(${target} REUSE_FROM ${set})
    endforeach()
endfunction()
