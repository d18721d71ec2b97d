// What the tests of the calibration driver share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "component/calibration/driver.h"
#include "tests/component/calibration/calibration_calls.h"
#include "tests/support/calibration_fixture.h"

namespace tof::fakes {

inline const std::string kCalibrationLog = "CalibrationLog_20240229_130509.txt";

// A calibrator whose driver is looked at: its own trace texts, its calls, its state.
class Driver : public CalibrationFixture {
 protected:
  // Stored values instead of an estimate from peaks, for tests that look elsewhere.
  void SkipTheEstimate() {
    instrument.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
    instrument.flags["SkipCalcLikelyABeforeCalibration_LikelyA"] = "0.65";
    instrument.flags["SkipCalcLikelyABeforeCalibration_t0"] = "0.3";
  }

  // What the driver itself traced, without the lines of the routines it calls.
  std::vector<std::string> DriverTexts() const {
    const std::string begin = "calibrateTOFMassAxis 4: ";
    std::vector<std::string> texts;
    for (const std::string& line : host.trace->lines) {
      if (line.rfind(begin, 0) == 0) texts.push_back(line.substr(begin.size()));
    }
    return texts;
  }

  std::ptrdiff_t Traced(const std::string& text) const {
    const auto texts = DriverTexts();
    return std::count(texts.begin(), texts.end(), text);
  }

  std::vector<std::string> RoutinesEntered() const {
    std::vector<std::string> names;
    for (const std::string& line : host.trace->lines) {
      if (line.rfind("Entry ", 0) == 0) names.push_back(line.substr(6));
    }
    return names;
  }

  std::size_t NumberOf(const std::string& call) const { return journal.Only({call}).size(); }

  // The routine itself, for what the object does not show.
  std::shared_ptr<MassCalCoefficients> CalibrateWith(CalibrationState& state) {
    Instrument parts = Collaborators();
    return calibrateTOFMassAxis(parts, host, state,
                                {.nAvgSpectra = n_spectra,
                                 .varExpectedMasses = masses,
                                 .varAveragedMeasuredTimes = times,
                                 .bSuppressAbImmuneCalib = suppress_aic,
                                 .dTradWeighting = optional.dTradWeighting,
                                 .dPeakFindTimeWindow = optional.dPeakFindTimeWindow},
                                events);
  }
};

}  // namespace tof::fakes
