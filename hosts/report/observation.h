// What was seen of a calibration while it ran, from outside the calibrator.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "component/automation/variant.h"

namespace tof::report {

// What a calibration is doing, in the order of a pass. Collecting is measuring the flight times
// that are averaged.
enum class Stage {
  kPreparing,
  kEstimating,
  kSurveying,
  kChoosing,
  kCollecting,
  kAveraging,
  kFitting,
  kChecking,
  kRecording,
  kRestoring,
};

// Of a calibrant in one spectrum; none where its peak was not found.
struct PeakReading {
  std::optional<double> time_ns;
  std::optional<double> abundance;
};

// One spectrum parsed for the calibrants.
struct SpectrumReading {
  std::int32_t pass = 1;
  Stage stage = Stage::kPreparing;
  std::string routine;  // the one that says what is being done
  double at_seconds = 0.0;
  std::optional<double> voltage;   // of the setpoint that is moved, as last read or written
  std::vector<PeakReading> peaks;  // in the order of the masses
};

// The abundance of one mass, looked up in the newest spectrum.
struct AbundanceReading {
  std::int32_t pass = 1;
  Stage stage = Stage::kPreparing;
  double mass = 0.0;
  std::optional<double> voltage;
  double abundance = 0.0;
};

struct SetpointWrite {
  std::int32_t id = 0;
  Variant value;
};

// What a stage took, all its moments together.
struct StageTime {
  std::int32_t pass = 1;
  Stage stage = Stage::kPreparing;
  double instrument_seconds = 0.0;
  double wall_seconds = 0.0;
  std::int64_t spectra = 0;
};

struct Observation {
  std::optional<bool> aic;         // the calibrator's decision, when it got there
  std::int32_t passes = 0;         // fitting passes that were begun
  std::optional<Stage> failed_in;  // the first routine that reported an error ran in this stage
  std::vector<SpectrumReading> spectra;
  std::vector<AbundanceReading> abundances;
  std::vector<SetpointWrite> writes;
  std::vector<StageTime> stages;  // in the order of their beginnings
};

}  // namespace tof::report
