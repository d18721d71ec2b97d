// The calibration that a spectrum's flight times are turned into m/z with.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "instruments/masstime/mass_time_model.h"

namespace tof::apply {

// Where the coefficients are, as the user says it.
struct CalibrationChoice {
  std::filesystem::path file;                         // a JSON result, or a calibration log
  std::optional<int> run;                             // which fit of a log, from 1; none: the last
  std::optional<masstime::AcquisitionWindow> window;  // that the terms of a log belong to
};

struct AppliedCalibration {
  masstime::MassTimeModel model;
  bool has_window = false;         // without one, A and t0 are all there is
  std::vector<std::string> terms;  // fitted ones, "A", "t0", "C", ...
  std::string file;
  std::string what;  // "the result of a calibration", "fit 2 of the 3 in a calibration log"
  std::string date;  // as the file gives it
};

// Raises an InputError for a file that can't be used, for coefficients of another formula, for
// terms without the window that they belong to, and for a curve that does not rise with time.
//
// A JSON result names its formula and window. The text of a calibration log has a place for
// neither: A and t0 mean the same in every formula and are taken as they are; terms need the
// window, and whoever gives it says that they are those of this formula.
AppliedCalibration ReadCalibration(const CalibrationChoice& choice);

}  // namespace tof::apply
