include("${CMAKE_CURRENT_LIST_DIR}/header_only.cmake")
tof_header_only(CLI11::CLI11 HEADER /usr/include/CLI)
set(CLI11_FOUND TRUE)
