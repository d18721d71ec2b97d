# tof_idl(name FILE x.idl [IMPORTS name ...])
# A type library and a C++ header from an IDL file: idl/x.tlb and idl/x.h of the build folder. Linking
# to the target gives the header, and the folder for windres to find the library in.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_program(TOF_WIDL ${TOF_MINGW_TRIPLE}-widl REQUIRED)
# The declarations of IDispatch and the standard types, which come with Wine and not with mingw-w64.
find_path(TOF_IDL_INCLUDE oaidl.idl PATHS /usr/include/wine/wine/windows NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(TOF_STDOLE_FOLDER stdole2.tlb
  PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows NO_CMAKE_FIND_ROOT_PATH REQUIRED)

function(tof_idl name)
  cmake_parse_arguments(ARG "" "FILE" "IMPORTS" ${ARGN})
  cmake_path(GET ARG_FILE STEM stem)
  set(folder "${CMAKE_BINARY_DIR}/idl")
  file(MAKE_DIRECTORY "${folder}")
  set(source "${CMAKE_CURRENT_SOURCE_DIR}/${ARG_FILE}")
  cmake_path(GET source PARENT_PATH source_folder)
  set(import_files "")
  foreach(import IN LISTS ARG_IMPORTS)
    list(APPEND import_files "$<TARGET_PROPERTY:${import},TOF_TYPE_LIBRARY>")
  endforeach()
  set(widl "${TOF_WIDL}" -I "${source_folder}" -I "${TOF_IDL_INCLUDE}" -L "${folder}" -L "${TOF_STDOLE_FOLDER}")
  add_custom_command(
    OUTPUT "${folder}/${stem}.tlb" "${folder}/${stem}.h"
    COMMAND ${widl} -t -o "${folder}/${stem}.tlb" "${source}"
    COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/tools/mend_type_library" "${folder}/${stem}.tlb" "${source}"
    COMMAND ${widl} -h -o "${folder}/${stem}.h" "${source}"
    DEPENDS "${source}" "${PROJECT_SOURCE_DIR}/tools/mend_type_library" ${import_files}
    VERBATIM)
  add_custom_target(${name}_files DEPENDS "${folder}/${stem}.tlb" "${folder}/${stem}.h")
  add_library(${name} INTERFACE)
  add_dependencies(${name} ${name}_files ${ARG_IMPORTS})
  # As system headers: what widl writes is not held to the project's warnings.
  target_include_directories(${name} SYSTEM INTERFACE "${folder}")
  target_link_libraries(${name} INTERFACE ${ARG_IMPORTS})
  set_target_properties(${name} PROPERTIES TOF_TYPE_LIBRARY "${folder}/${stem}.tlb")
endfunction()

# tof_windows_dll(name SOURCES ... EXPORTS function ... LINK target ...)
# A DLL without "lib" before its name, which exports these functions and needs DLLs of Windows only.
function(tof_windows_dll name)
  cmake_parse_arguments(ARG "" "" "SOURCES;EXPORTS;LINK" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES PREFIX "")
  target_link_libraries(${name} PRIVATE tof_options ${ARG_LINK})
  # The names in the .def file are those of the exports; 32-bit stdcall decorates the functions'.
  target_link_options(${name} PRIVATE -Wl,--enable-stdcall-fixup -s)
  add_custom_command(TARGET ${name} POST_BUILD
    COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/tools/check_dll"
      "${CMAKE_OBJDUMP}" "$<TARGET_FILE:${name}>" ${ARG_EXPORTS}
    VERBATIM)
endfunction()

# tof_com_server_dll(name SOURCES ... TYPE_LIBRARIES idl_target ... LINK target ...)
# The DLL of a COM server; its resource script names the type libraries, which windres finds by their
# file names.
function(tof_com_server_dll name)
  cmake_parse_arguments(ARG "" "" "SOURCES;TYPE_LIBRARIES;LINK" ${ARGN})
  tof_windows_dll(${name}
    SOURCES ${ARG_SOURCES}
    EXPORTS DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer
    LINK ${ARG_LINK} ${ARG_TYPE_LIBRARIES})
  set(resource_scripts ${ARG_SOURCES})
  list(FILTER resource_scripts INCLUDE REGEX "\\.rc$")
  foreach(library IN LISTS ARG_TYPE_LIBRARIES)
    get_target_property(file ${library} TOF_TYPE_LIBRARY)
    set_property(SOURCE ${resource_scripts} APPEND PROPERTY OBJECT_DEPENDS "${file}")
  endforeach()
endfunction()
