# dist/: the tree as a user runs it.

set(dist ${CMAKE_SOURCE_DIR}/dist)
add_custom_target(dist ALL
    COMMAND ${CMAKE_COMMAND} -E make_directory "${dist}/Vesk Plugins"
    COMMAND ${CMAKE_COMMAND} -E copy_if_different
        $<TARGET_FILE:VeskTrader> $<TARGET_FILE:connectvesk> $<TARGET_FILE:korvexcontrols>
        $<TARGET_FILE:planfold-basket> $<TARGET_FILE:planfold-hostcheck> $<TARGET_FILE:hostcheck_plugin>
        $<TARGET_FILE:veskserver> "${dist}"
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:planfold> "${dist}/Vesk Plugins"
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_SOURCE_DIR}/data ${dist}/data
    VERBATIM)
add_dependencies(dist VeskTrader connectvesk korvexcontrols planfold planfold-basket planfold-hostcheck hostcheck_plugin
    veskserver)
