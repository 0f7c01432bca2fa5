# cmake -DOBJDUMP=... -DIMAGE=Planfold.zup -P CheckImage.cmake
# The plug-in's file must export exactly the agreed names and lean on nothing but its two libraries and the system.
cmake_minimum_required(VERSION 3.25)

set(entry_points
    AlertOn_ClientActivation
    ApplyFontVarPreference
    ExitVeskPlugin
    GetBCGCBProVersion
    GetOptionalVeskPluginInfo
    GetVeskPluginInfo
    InitVeskPlugin
    ProcessVeskPluginMsg
    vesku_get_formatted_month_in_number)
# Members, virtual table and type information of the exported class, as the compiler writes them.
set(exported_class "^_Z(N|NK|TV|TI|TS|Th[n0-9_]+N)16CColorHeaderCtrl")
set(class_members "^_ZN16CColorHeaderCtrlC1E" "^_ZN16CColorHeaderCtrlD1Ev$")

set(own_libraries connectvesk.dll korvexcontrols.dll)
set(system_libraries advapi32 comctl32 comdlg32 dwmapi gdi32 imm32 kernel32 msimg32 msvcrt ntdll ole32 oleacc oleaut32
    shell32 shlwapi ucrtbase user32 uxtheme version winmm)

execute_process(COMMAND ${OBJDUMP} -f -p ${IMAGE} OUTPUT_VARIABLE dump RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${OBJDUMP} cannot read ${IMAGE}")
endif()
set(faults "")

if(NOT dump MATCHES "pei-x86-64")
    string(APPEND faults "not a 64-bit image\n")
endif()

string(REGEX REPLACE ".*\\[Ordinal/Name Pointer\\] Table([^\n]*\n(\t\\[[^\n]*\n)*).*" "\\1" table "${dump}")
string(REGEX MATCHALL "\t\\[ *[0-9]+\\][^\n]*" lines "${table}")
set(exported "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE ".*[ \t]([^ \t]+)$" "\\1" name "${line}")
    list(APPEND exported ${name})
endforeach()
foreach(name IN LISTS entry_points)
    if(NOT name IN_LIST exported)
        string(APPEND faults "does not export ${name}\n")
    endif()
endforeach()
foreach(pattern IN LISTS class_members)
    set(found ${exported})
    list(FILTER found INCLUDE REGEX "${pattern}")
    if(NOT found)
        string(APPEND faults "exports nothing like ${pattern}\n")
    endif()
endforeach()
foreach(name IN LISTS exported)
    if(NOT name IN_LIST entry_points AND NOT name MATCHES "${exported_class}")
        string(APPEND faults "exports ${name} as well\n")
    endif()
endforeach()

string(REGEX MATCHALL "DLL Name: [^\n]+" lines "${dump}")
set(imported "")
foreach(line IN LISTS lines)
    string(REPLACE "DLL Name: " "" library "${line}")
    string(STRIP "${library}" library)
    string(TOLOWER "${library}" library)
    list(APPEND imported ${library})
    string(REGEX REPLACE "\\.(dll|drv)$" "" stem "${library}")
    if(NOT library IN_LIST own_libraries AND NOT stem IN_LIST system_libraries AND NOT stem MATCHES "^api-ms-win-")
        string(APPEND faults "imports ${library}\n")
    endif()
endforeach()
foreach(library IN LISTS own_libraries)
    if(NOT library IN_LIST imported)
        string(APPEND faults "does not import ${library}\n")
    endif()
endforeach()

if(faults)
    message(FATAL_ERROR "${IMAGE}\n${faults}")
endif()
list(LENGTH exported count)
message(STATUS "${IMAGE}: ${count} exports, imports ${imported}")
