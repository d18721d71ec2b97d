// A host process in small that works with the registered classes alone: COM on this thread,
// vorntofcaliblib.dll and the instrument of vorninstrument.dll.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vorninstrumentcontrol.h>
#include <vorntofcaliblib.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "component/automation/bounded_array.h"
#include "component/calibrator/mass_time_library.h"
#include "hosts/com/automation/dispatch_object.h"
#include "tests/com/com_host.h"

namespace tof::com {

// The built-in instrument whose waits are none: those of the calibrator are real in COM.
inline const std::vector<std::string> kNoWaits = {"Calibration/AICSettlingTime_sec=0"};

struct CalibrationResult {
  std::vector<std::pair<LONG, std::string>> events;
  std::vector<double> times_ns;
  std::optional<CoefficientRecord> coefficients;  // none after a failure
};

struct CalibrationRequest {
  std::vector<double> masses;
  short spectra = 10;
  bool suppress_aic = false;
};

// Files by name, with the bytes of each.
using FileContents = std::map<std::string, std::string>;
FileContents FilesIn(const std::filesystem::path& folder);

// At the end of each test every object must have been released, so that the DLLs may go.
class RegisteredWorld : public ::testing::Test {
 protected:
  RegisteredWorld();
  ~RegisteredWorld() override;

  void TearDown() override;

  ComPtr<_TofCalibrator> NewCalibrator() const;

  // Asks the DLLs whether they may go; with no object left they put away what they hold.
  static HRESULT CanUnloadCalibrator();
  static HRESULT CanUnloadInstrument();

  // Of a calibrator of its own, or of one that there is.
  CalibrationResult Calibrate(const CalibrationRequest& request) const;
  static CalibrationResult Calibrate(_TofCalibrator& calibrator, const CalibrationRequest& request);

  void LoadBuiltIn();
  void LoadExample(const std::string& name, const std::filesystem::path& data_folder);
  std::vector<double> Masses();
  LONG Number(const char* property);
  LONG Calls(const char* operation);

  // The error that a method of the control raises.
  template <class... Arguments>
  AutomationError ErrorOf(const char* method, Arguments&&... arguments) {
    try {
      control->Call(method, std::forward<Arguments>(arguments)...);
    } catch (const AutomationError& error) {
      return error;
    }
    return {0, ""};
  }

  Apartment apartment;
  std::filesystem::path base_folder;
  std::optional<DispatchObject> control;  // vorninstrument.InstrumentControl, by name
};

}  // namespace tof::com
