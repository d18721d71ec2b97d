# libgcrypt, which brings no package file for CMake.
find_path(Gcrypt_INCLUDE_DIR gcrypt.h)
if(WIN32)
  # A program needs the system's DLLs and no other.
  find_library(Gcrypt_LIBRARY NAMES libgcrypt.a)
  find_library(GpgError_LIBRARY NAMES libgpg-error.a)
else()
  find_library(Gcrypt_LIBRARY gcrypt)
  find_library(GpgError_LIBRARY gpg-error)
endif()
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Gcrypt DEFAULT_MSG Gcrypt_LIBRARY GpgError_LIBRARY Gcrypt_INCLUDE_DIR)
if(Gcrypt_FOUND AND NOT TARGET Gcrypt::Gcrypt)
  add_library(Gcrypt::Gcrypt UNKNOWN IMPORTED)
  set_target_properties(Gcrypt::Gcrypt PROPERTIES
    IMPORTED_LOCATION "${Gcrypt_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Gcrypt_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES "${GpgError_LIBRARY}$<$<PLATFORM_ID:Windows>:;ws2_32>")
endif()
