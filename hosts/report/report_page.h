// Everything that a page about one calibration shows. What was not recorded is absent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "component/calibrator/mass_time_library.h"
#include "hosts/report/abundance_effect.h"

namespace tof::report {

enum class Outcome { kCalibrated, kFailed, kSkipped, kUnknown };

// A calibrant's abundance at one RF voltage.
struct SurveyPoint {
  double voltage = 0.0;
  std::optional<double> time_ns;
  double abundance = 0.0;
};

// One of the measurements that the flight time is the mean of.
struct Measurement {
  std::int32_t number = 0;  // from 1
  std::optional<double> time_ns;
  std::optional<double> abundance;
  std::optional<double> at_seconds;  // instrument time
};

struct Calibrant {
  std::optional<double> expected;  // m/z
  std::optional<double> time_ns;   // averaged
  std::optional<double> calculated;
  std::optional<double> error_before_ppm;
  std::optional<double> error_ppm;
  std::optional<double> voltage;
  std::optional<double> abundance;
  std::string remark;                 // "below the band", "no peak"
  std::vector<SurveyPoint> survey;    // every voltage in the order it was measured
  std::vector<SurveyPoint> choosing;  // by which the voltage was chosen
  std::optional<double> band_low;
  std::optional<double> band_high;
  std::vector<Measurement> measurements;
};

// A setpoint of the instrument, as texts; the values it had in between, if it was written.
struct SetpointRow {
  std::string id;
  std::string name;
  std::string before;
  std::string during;
  std::string after;
  bool as_before = true;
};

struct StageRow {
  std::int32_t pass = 1;
  std::string name;
  double instrument_seconds = 0.0;
  double wall_seconds = 0.0;
  std::int64_t spectra = 0;
};

struct CountRow {
  std::string key;  // as in the JSON result
  std::string name;
  std::optional<std::int64_t> count;
};

struct Coefficients {
  std::optional<CoefficientRecord> before;
  std::optional<CoefficientRecord> after;
  std::optional<std::int32_t> terms;  // which of C to H were fitted, a bit each
};

// A file, or a part of it, that could not be read. `line` counts from 1; 0 is the file as a whole.
struct Problem {
  std::string file;
  std::size_t line = 0;
  std::string what;
};

// A run that the same folder tells of.
struct RunRow {
  std::size_t number = 0;  // from 1, the oldest first
  std::string began;
  std::string told;  // what is known of it in a few words
  bool shown = false;
};

struct ReportPage {
  std::string instrument;  // empty: not recorded
  std::string source;      // where all this is from
  std::string moment;      // when it was, as recorded
  std::string program;     // name and version of what made the page

  Outcome outcome = Outcome::kUnknown;
  std::string reason;                // of a failure, or of not knowing
  std::optional<std::string> stage;  // in which it failed
  std::optional<bool> aic;
  std::optional<std::int32_t> passes;
  std::optional<std::string> restored;  // a clause: "every setpoint is as it was before"
  std::optional<std::string> in_force;  // a clause: which coefficients are in force now

  std::string before_means;  // which coefficients "before" are
  std::vector<Calibrant> calibrants;
  std::optional<double> rms_ppm;
  std::optional<double> max_ppm;
  std::optional<double> loo_ppm;
  Coefficients coefficients;
  AbundanceEffect effect;

  std::optional<std::vector<SetpointRow>> setpoints;
  std::vector<CountRow> counts;
  std::optional<std::vector<StageRow>> stages;
  std::optional<double> instrument_seconds;
  std::optional<double> wall_seconds;

  std::vector<std::string> files;
  std::vector<Problem> problems;
  std::vector<RunRow> runs;
};

// The verdict: calibrated or not and why, abundance-immune or not, which pass, what was put back.
std::string VerdictSentence(const ReportPage& page);

}  // namespace tof::report
