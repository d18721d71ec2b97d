// What a calibration came to, for the people and programs that read it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "component/calibrator/mass_time_library.h"
#include "instruments/masstime/mass_time_model.h"
#include "instruments/standin/truth.h"

namespace tof::cli {

enum class BandSide { kBelow, kAbove };

// One expected mass. What is not known is absent: a mass whose peak was not found has no time.
struct MassRow {
  double expected = 0.0;  // m/z
  std::optional<double> time_ns;
  std::optional<double> calculated;  // m/z that the new coefficients give the time
  std::optional<double> error_ppm;
  std::optional<double> voltage;
  std::optional<double> abundance;
  // Of a mass that abundance-immune calibration could not bring into the target band.
  std::optional<BandSide> outside_band = {};
};

using standin::Truth;
using standin::TruthFigures;

// How often the instrument was asked.
struct Counts {
  std::int64_t spectra = 0;
  std::int64_t setpoint_writes = 0;
  std::int64_t setpoint_reads = 0;
  std::int64_t settle_calls = 0;
  std::int64_t settle_slices = 0;
};

struct CalibrationReport {
  bool ok = false;
  bool skipped = false;  // the instrument's flags told the calibrator not to calibrate
  std::int32_t status_number = 0;
  std::string status_message;
  bool aic = false;
  std::int16_t spectra = 0;  // per mass that were asked for
  std::vector<MassRow> masses;
  std::string date;                               // of the calibration, UTC, "2026-11-21T17:05:09Z"
  std::optional<CoefficientRecord> coefficients;  // in force at the end of a good calibration
  masstime::AcquisitionWindow window;             // that they belong to
  std::vector<std::string> terms;                 // fitted ones, "A", "t0", "C", ...
  std::optional<double> rms_ppm;
  std::optional<double> max_ppm;
  std::optional<double> loo_ppm;
  std::optional<Truth> truth;
  Counts counts;
  double instrument_seconds = 0.0;
  double wall_seconds = 0.0;
  std::vector<std::string> files;
};

}  // namespace tof::cli
