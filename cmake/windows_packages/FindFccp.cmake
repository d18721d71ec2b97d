include("${CMAKE_CURRENT_LIST_DIR}/header_only.cmake")
tof_header_only(Fccp::Fccp HEADER /usr/include/libfccp/csv.h)
set(Fccp_FOUND TRUE)
