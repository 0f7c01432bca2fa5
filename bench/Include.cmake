# Joins the benchmarks to a build of the project: given as CMAKE_PROJECT_planfold_INCLUDE by bench/run and
# bench/count alone, so that no other build needs the peers' packages. Deferred, as the rules for all targets
# are read after it.
cmake_language(DEFER CALL include ${CMAKE_SOURCE_DIR}/bench/Programs.cmake)
