# The Fast C++ CSV Parser, one header, which brings no package file for CMake. Its threads are the
# standard library's.
find_path(Fccp_INCLUDE_DIR csv.h PATH_SUFFIXES libfccp)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Fccp DEFAULT_MSG Fccp_INCLUDE_DIR)
if(Fccp_FOUND AND NOT TARGET Fccp::Fccp)
  add_library(Fccp::Fccp INTERFACE IMPORTED)
  set_target_properties(Fccp::Fccp PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${Fccp_INCLUDE_DIR}")
endif()
