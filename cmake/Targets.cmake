# How every target of this project is built: one place for warnings, sanitizers and the static runtime.

option(PLANFOLD_SANITIZE "AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(PLANFOLD_WERROR "Warnings are errors, as ./test has it" OFF)
option(PLANFOLD_FUZZ "The fuzzers; needs clang" OFF)

add_library(house_rules INTERFACE)
target_compile_options(house_rules INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${PLANFOLD_WERROR}>:-Werror>
    # GCC 12 reports std::string of its own library here when it optimises (PR 105651).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    # Records of the boundary hold members that only the other side uses.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-missing-braces;-Wno-unused-private-field>)
if(PLANFOLD_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()
if(PLANFOLD_FUZZ)
    # The counting of branches goes everywhere, libFuzzer's own main only into the fuzzers.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(WIN32)
    add_compile_definitions(WIN32_LEAN_AND_MEAN NOMINMAX WINVER=0x0A00 _WIN32_WINNT=0x0A00)
    # Control Flow Guard is missing: neither this compiler nor this linker has it.
    add_compile_options(-ffunction-sections -fdata-sections -fstack-protector-strong -g1)
    add_link_options(-static -static-libgcc -static-libstdc++ -fstack-protector-strong
        -Wl,--gc-sections,--no-insert-timestamp,--dynamicbase,--nxcompat,--high-entropy-va
        $<$<NOT:$<BOOL:$<TARGET_PROPERTY:PLANFOLD_SHIPS>>>:-s>)
endif()
if(NOT PLANFOLD_SANITIZE)
    # The same bytes come out in any folder, and tell nobody which one it was.
    add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
endif()

# house_library(NAME SOURCES... [LINK libs...])
function(house_library name)
    cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
    add_library(${name} STATIC ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PUBLIC sdk ${arg_LINK} PRIVATE house_rules)
endfunction()

if(PLANFOLD_FUZZ)
    enable_testing()
    add_subdirectory(${CMAKE_SOURCE_DIR}/fuzz ${CMAKE_BINARY_DIR}/fuzz)
endif()

# The header-only JSON library serves every target. A link in the build folder keeps the rest of the system's
# headers away from the cross compiler.
find_path(NLOHMANN_JSON_ROOT nlohmann/json.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/json)
file(CREATE_LINK ${NLOHMANN_JSON_ROOT}/nlohmann ${CMAKE_BINARY_DIR}/json/nlohmann SYMBOLIC)
add_library(house_json INTERFACE)
target_include_directories(house_json SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/json)

# What workbooks are read with: zlib, on Windows within the program, and the header-only XML parser.
find_path(RAPIDXML_ROOT rapidxml/rapidxml.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/xml)
file(CREATE_LINK ${RAPIDXML_ROOT}/rapidxml ${CMAKE_BINARY_DIR}/xml/rapidxml SYMBOLIC)
if(WIN32)
    find_library(ZLIB_LIBRARY libz.a REQUIRED)
endif()
find_package(ZLIB REQUIRED)
add_library(house_workbook INTERFACE)
target_include_directories(house_workbook SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/xml)
target_link_libraries(house_workbook INTERFACE ZLIB::ZLIB)
