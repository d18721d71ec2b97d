# What every target of the project is compiled with.

option(TOF_BUILD_TESTS "Build the tests" ON)
option(TOF_BUILD_BENCHMARKS "Build the benchmarks" OFF)
set(TOF_SANITIZE "" CACHE STRING "Sanitizers for every target, e.g. address,undefined")
option(TOF_COVERAGE "Instrument for line coverage" OFF)
option(TOF_TEST_WHOLE_PROGRAMS "One ctest test for a test program, not for each of its tests" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")

add_library(tof_options INTERFACE)
target_include_directories(tof_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(tof_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wimplicit-fallthrough
  -Wunused -Werror
  # A fused multiply-add would make results depend on the machine: same seed, same bytes.
  -ffp-contract=off)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 reports string concatenation as an overlapping copy (its bug 105651).
  target_compile_options(tof_options INTERFACE -Wno-restrict)
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # At no cost what two checks of clang-tidy would take a tenth of its time to find.
  target_compile_options(tof_options INTERFACE
    -Wreserved-identifier -Wzero-as-null-pointer-constant)
endif()

if(TOF_SANITIZE)
  target_compile_options(tof_options INTERFACE
    -fsanitize=${TOF_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tof_options INTERFACE -fsanitize=${TOF_SANITIZE})
endif()
if(TOF_COVERAGE)
  target_compile_options(tof_options INTERFACE --coverage -O0)
  target_link_options(tof_options INTERFACE --coverage)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # With these it takes a precompiled header for what it is; no source asks for the time of its compilation.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    "${CMAKE_COMMAND};-E;env;CCACHE_SLOPPINESS=pch_defines,time_macros;${CCACHE_PROGRAM}")
endif()
