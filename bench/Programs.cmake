set(bench ${CMAKE_SOURCE_DIR}/bench)

add_library(bench_rounds OBJECT EXCLUDE_FROM_ALL
    ${bench}/Allocations.cpp
    ${bench}/Report.cpp
    ${bench}/Rounds.cpp)
target_link_libraries(bench_rounds PRIVATE house_rules sdk)

add_executable(planfold_bench EXCLUDE_FROM_ALL
    ${bench}/Main.cpp
    ${bench}/MessageCases.cpp
    ${bench}/QuickFixPeer.cpp
    ${bench}/SubmitCase.cpp)
target_link_libraries(planfold_bench PRIVATE house_rules bench_rounds planfold_core quickfix)
# The peer's headers throw by lists of types, which the language gave up in C++17.
set_source_files_properties(${bench}/QuickFixPeer.cpp PROPERTIES COMPILE_OPTIONS "-std=c++14;-Wno-deprecated")

find_package(absl REQUIRED)
add_executable(planfold_book_bench EXCLUDE_FROM_ALL
    ${bench}/BookMain.cpp
    ${bench}/BookRecordCases.cpp
    ${bench}/BookStreamCases.cpp
    ${bench}/SampleBook.cpp
    ${bench}/SqlitePeer.cpp)
target_link_libraries(planfold_book_bench PRIVATE
    house_rules bench_rounds planfold_core korvex_model absl::flat_hash_map sqlite3)

add_executable(planfold_list_bench EXCLUDE_FROM_ALL ${bench}/ListCases.cpp)
target_link_libraries(planfold_list_bench PRIVATE house_rules bench_rounds korvex_model)

add_executable(planfold_basket_bench EXCLUDE_FROM_ALL
    ${bench}/BasketCases.cpp
    ${bench}/BasketMain.cpp
    ${bench}/BasketPeers.cpp
    ${bench}/BasketRowCases.cpp
    ${bench}/SampleBasket.cpp
    ${bench}/SubmitCase.cpp)
target_link_libraries(planfold_basket_bench PRIVATE house_rules bench_rounds planfold_core csv)

add_executable(planfold_net_bench EXCLUDE_FROM_ALL ${bench}/NetBench.cpp)
target_link_libraries(planfold_net_bench PRIVATE house_rules vesk_net)

add_executable(planfold_start_bench EXCLUDE_FROM_ALL ${bench}/StartBench.cpp)
target_link_libraries(planfold_start_bench PRIVATE house_rules vesk_server)

add_executable(planfold_runs_bench EXCLUDE_FROM_ALL ${bench}/RunsBench.cpp)
target_link_libraries(planfold_runs_bench PRIVATE house_rules bench_rounds planfold_core)
