// What a COM server writes into the registry, and takes out again.
#pragma once

#include <vector>

#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

struct RegisteredClass {
  CLSID class_id;
  const char* prog_id;  // of any version, e.g. "vorntofcaliblib.TofCalibrator"; this one has ".1"
  const char* description;
  GUID type_library_id;
};

// In-process, apartment-threaded classes of this module, and its embedded type libraries. What was
// written is taken out again when a step fails.
HRESULT RegisterModule(const std::vector<RegisteredClass>& classes);

// Takes out everything that RegisterModule wrote; a part that is not there is no failure. A ProgID
// that meanwhile belongs to another class stays.
HRESULT UnregisterModule(const std::vector<RegisteredClass>& classes);

}  // namespace tof::com
