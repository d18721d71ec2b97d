set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TOF_MINGW_TRIPLE x86_64-w64-mingw32)
include("${CMAKE_CURRENT_LIST_DIR}/mingw_w64.cmake")
# ctest runs the programs of this build through it.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../../tools/run_in_wine")
