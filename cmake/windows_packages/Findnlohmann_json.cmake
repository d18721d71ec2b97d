include("${CMAKE_CURRENT_LIST_DIR}/header_only.cmake")
tof_header_only(nlohmann_json::nlohmann_json HEADER /usr/include/nlohmann)
set(nlohmann_json_FOUND TRUE)
