# A Windows build on Linux with mingw-w64. The two toolchain files beside this one say which machine:
# TOF_MINGW_TRIPLE is set when this file is read.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${TOF_MINGW_TRIPLE}-gcc-posix)  # of libraries built from source
set(CMAKE_CXX_COMPILER ${TOF_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${TOF_MINGW_TRIPLE}-windres)

# Nothing of the build machine's own headers and libraries gets in; its programs do.
set(CMAKE_FIND_ROOT_PATH /usr/${TOF_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# A library that goes into other people's processes needs the system's DLLs and no other.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(ZLIB_LIBRARY /usr/${TOF_MINGW_TRIPLE}/lib/libz.a)
