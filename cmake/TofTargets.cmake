# tof_library(name SOURCES a.cpp ... [LINK target ...])
# A static library of one folder, with the project's warnings. LINK is public.
function(tof_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC tof_options ${ARG_LINK})
endfunction()

# tof_test(name SOURCES a_test.cpp ... [LINK target ...])
# One GoogleTest program; each of its tests is a ctest test of its own. Tests find the project's
# files through TOF_SOURCE_DIR and the shared spectra, where there are any, through TOF_SHARED_DATA.
function(tof_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tof_options ${ARG_LINK} GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    TOF_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    TOF_SHARED_DATA="${PROJECT_SOURCE_DIR}/../shared/data")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()

# tof_bench(name SOURCES a_bench.cpp ... [LINK target ...])
function(tof_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tof_options ${ARG_LINK} benchmark::benchmark_main)
  target_compile_definitions(${name} PRIVATE
    TOF_SHARED_DATA="${PROJECT_SOURCE_DIR}/../shared/data")
endfunction()
