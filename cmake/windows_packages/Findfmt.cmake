include("${CMAKE_CURRENT_LIST_DIR}/header_only.cmake")
tof_header_only(fmt::fmt HEADER /usr/include/fmt)
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
set(fmt_FOUND TRUE)
