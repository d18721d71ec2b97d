set(CMAKE_SYSTEM_PROCESSOR x86)
set(TOF_MINGW_TRIPLE i686-w64-mingw32)
include("${CMAKE_CURRENT_LIST_DIR}/mingw_w64.cmake")
# Doubles are rounded as on the other machines, not kept in 80 bits; callers of a DLL align the stack
# to 4 bytes only, which those instructions cannot take.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
