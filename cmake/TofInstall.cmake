# What `cmake --install` installs. Component "development": the libraries, their headers and the CMake package;
# component "program": tofcal with its manual page and shell completion, which is also the Debian package.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Headers keep their paths from the project's root: "component/calibrator/tof_calibrator.h" here and there.
set(tof_header_folder ${CMAKE_INSTALL_INCLUDEDIR}/tofcalibrator)
set(tof_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/TofCalibrator)

# tof_install_libraries(part target ...)
# One part of the CMake package: TofCalibrator::component is the target tof_component.
function(tof_install_libraries part)
  foreach(target IN LISTS ARGN)
    string(REGEX REPLACE "^tof_" "" exported_name ${target})
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${exported_name})
  endforeach()
  install(TARGETS ${ARGN} EXPORT TofCalibrator${part} COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(EXPORT TofCalibrator${part} NAMESPACE TofCalibrator:: DESTINATION ${tof_package_folder}
    COMPONENT development)
endfunction()

# These need nothing but the standard library ...
tof_install_libraries(Component tof_component tof_conformance)
# ... and these what they read files and fit with.
tof_install_libraries(Instruments
  tof_description tof_masstime tof_native tof_peaks tof_recorded tof_spectra tof_standin tof_virtual)

install(DIRECTORY component instruments DESTINATION ${tof_header_folder} COMPONENT development
  FILES_MATCHING PATTERN "*.h")
install(DIRECTORY hosts/native DESTINATION ${tof_header_folder}/hosts COMPONENT development
  FILES_MATCHING PATTERN "*.h")

configure_package_config_file(cmake/TofCalibratorConfig.cmake.in TofCalibratorConfig.cmake
  INSTALL_DESTINATION ${tof_package_folder})
# Before 1.0 a new minor version may change the interface.
write_basic_package_version_file(TofCalibratorConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES "${PROJECT_BINARY_DIR}/TofCalibratorConfig.cmake" "${PROJECT_BINARY_DIR}/TofCalibratorConfigVersion.cmake"
  DESTINATION ${tof_package_folder} COMPONENT development)
