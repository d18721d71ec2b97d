include("${CMAKE_CURRENT_LIST_DIR}/header_only.cmake")
tof_header_only(Eigen3::Eigen HEADER /usr/include/eigen3/Eigen)
set(Eigen3_FOUND TRUE)
