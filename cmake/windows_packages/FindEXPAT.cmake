# Debian has this library built for Linux alone; its sources, Debian's too, are built here.
find_path(TOF_EXPAT_SOURCE xmlparse.c PATHS /usr/src/expat/expat/lib NO_CMAKE_FIND_ROOT_PATH)
if(NOT TOF_EXPAT_SOURCE)
  message(FATAL_ERROR "/usr/src/expat is not there; tools/setup windows fetches it")
endif()
if(NOT TARGET EXPAT::EXPAT)
  enable_language(C)
  add_library(expat_for_windows STATIC
    "${TOF_EXPAT_SOURCE}/xmlparse.c" "${TOF_EXPAT_SOURCE}/xmlrole.c" "${TOF_EXPAT_SOURCE}/xmltok.c")
  target_compile_definitions(expat_for_windows
    PUBLIC XML_STATIC
    PRIVATE XML_NS XML_DTD XML_GE=1 XML_CONTEXT_BYTES=1024 BYTEORDER=1234 HAVE_EXPAT_CONFIG_H _CRT_RAND_S)
  # Its configuration is in the definitions above; the file that it asks for stays empty.
  file(WRITE "${CMAKE_BINARY_DIR}/expat/expat_config.h" "")
  target_include_directories(expat_for_windows PRIVATE "${CMAKE_BINARY_DIR}/expat")
  target_include_directories(expat_for_windows SYSTEM INTERFACE "${TOF_EXPAT_SOURCE}")
  add_library(EXPAT::EXPAT ALIAS expat_for_windows)
endif()
set(EXPAT_FOUND TRUE)
