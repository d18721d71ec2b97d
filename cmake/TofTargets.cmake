# tof_library(name SOURCES a.cpp ... [LINK target ...])
# A static library of one folder, with the project's warnings. LINK is public. Whoever uses the installed
# library gets its headers and the language version, and keeps to warnings of their own.
function(tof_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC $<BUILD_INTERFACE:tof_options> ${ARG_LINK})
  target_compile_features(${name} INTERFACE cxx_std_20)
  target_include_directories(${name} INTERFACE $<INSTALL_INTERFACE:include/tofcalibrator>)
endfunction()

# tof_test_code(name)
# Tests are built to be built quickly: what they call is optimised, they themselves hardly. Two thirds of their
# compile time went into optimising and instrumenting their bodies and reading the framework's headers anew.
function(tof_test_code name)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${name} PRIVATE -Og)
  endif()
endfunction()

# tof_test(name SOURCES a_test.cpp ... [LINK target ...] [PROPERTIES name value ...])
# One GoogleTest program. Each of its tests is a ctest test of its own, in a process of its own; with
# TOF_TEST_WHOLE_PROGRAMS the program is one ctest test, as starting an instrumented process costs more
# than most tests. Tests run side by side: one that writes a file does so in a folder of its own.
# PROPERTIES are those of each ctest test.
# Tests find the project's files through TOF_SOURCE_DIR and the shared spectra, where there are any, through TOF_SHARED_DATA.
function(tof_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PROPERTIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tof_options ${ARG_LINK} GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    TOF_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    TOF_SHARED_DATA="${PROJECT_SOURCE_DIR}/../shared/data")
  tof_test_code(${name})
  target_precompile_headers(${name} REUSE_FROM tof_test_headers)
  if(TOF_TEST_WHOLE_PROGRAMS)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 1800 ${ARG_PROPERTIES})
  else()
    # Rows of a table go by their own names; the value would be shown as its bytes.
    gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60
      PROPERTIES TIMEOUT 600 ${ARG_PROPERTIES})
  endif()
endfunction()

# tof_python_test(file CLASSES Class ... [ENVIRONMENT NAME=value ...])
# Tests in Python, which reaches a pseudo-terminal, another shell or dpkg more easily: a ctest test for each
# class of file.py. They find the program through TOFCAL.
function(tof_python_test file)
  cmake_parse_arguments(ARG "" "" "CLASSES;ENVIRONMENT" ${ARGN})
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  foreach(class IN LISTS ARG_CLASSES)
    add_test(NAME ${class} COMMAND Python3::Interpreter -B -m unittest -v ${file}.${class}
      WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
    set_tests_properties(${class} PROPERTIES TIMEOUT 600
      ENVIRONMENT "TOFCAL=$<TARGET_FILE:tofcal>;${ARG_ENVIRONMENT}")
  endforeach()
endfunction()

# tof_bench(name SOURCES a_bench.cpp ... [LINK target ...])
function(tof_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tof_options ${ARG_LINK} benchmark::benchmark_main)
  target_compile_definitions(${name} PRIVATE
    TOF_SHARED_DATA="${PROJECT_SOURCE_DIR}/../shared/data")
endfunction()
