# tof_header_only(target HEADER name): the headers of a library of the build machine that is headers
# alone. They are reached through links in a folder of the build: the folder they lie in holds the
# machine's own system headers too, which a Windows build must not see.
function(tof_header_only target)
  cmake_parse_arguments(ARG "" "HEADER" "" ${ARGN})
  if(TARGET ${target})
    return()
  endif()
  set(folder "${CMAKE_BINARY_DIR}/header_only")
  file(MAKE_DIRECTORY "${folder}")
  cmake_path(GET ARG_HEADER FILENAME name)
  if(NOT EXISTS "${ARG_HEADER}")
    message(FATAL_ERROR "${ARG_HEADER} is not there; tools/setup windows installs it")
  endif()
  file(CREATE_LINK "${ARG_HEADER}" "${folder}/${name}" SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE "${folder}")
endfunction()
