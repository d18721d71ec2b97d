// What a COM server writes into the registry, and takes out again.
#pragma once

#include <vector>

#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

struct RegisteredClass {
  CLSID class_id;
  const wchar_t* prog_id;          // of any version, e.g. "vorntofcaliblib.TofCalibrator"
  const wchar_t* version_prog_id;  // of this version: the same with ".1"
  const wchar_t* description;
  GUID library_id;
};

// In-process, apartment-threaded classes of this module, and its embedded type libraries. What was
// written is taken out again when a step fails.
HRESULT RegisterModule(const std::vector<RegisteredClass>& classes);

// Takes out everything that RegisterModule wrote; a part that is not there is no failure. A ProgID
// that meanwhile belongs to another class stays.
HRESULT UnregisterModule(const std::vector<RegisteredClass>& classes);

}  // namespace tof::com
