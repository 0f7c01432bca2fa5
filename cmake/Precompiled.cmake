# The headers that most files ask for, compiled beforehand when ./run builds for Windows. Every other build does without: it
# sees whether each file names what it needs, and has all warnings. In what it read beforehand the compiler forgets which
# lines are its library's own, and reports some of them.

set(PLANFOLD_PRECOMPILE OFF)
if(WIN32 AND NOT PLANFOLD_WERROR)
    set(PLANFOLD_PRECOMPILE ON)
endif()

set(asked_for_everywhere <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <ranges> <set> <span>
    <string> <string_view> <unordered_map> <utility> <variant> <vector>)

# By the first the compiler's cache can tell one set from another.
set(precompiled_options -fpch-preprocess -Wno-stringop-overflow -Wno-array-bounds)

function(house_headers name)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "")
    add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE house_rules)
    target_compile_options(${name} PRIVATE ${precompiled_options})
    target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()

if(PLANFOLD_PRECOMPILE)
    house_headers(portable_headers ${asked_for_everywhere})
    house_headers(window_headers ${asked_for_everywhere} <windows.h> <commctrl.h>)
endif()

# house_precompiled(SET TARGET): portable_headers for what knows no windows, window_headers for the rest.
function(house_precompiled set target)
    if(PLANFOLD_PRECOMPILE)
        target_compile_options(${target} PRIVATE ${precompiled_options})
        target_precompile_headers(${target} REUSE_FROM ${set})
    endif()
endfunction()
