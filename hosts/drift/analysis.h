// Flight time, abundance and drift per mass over dates.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/drift/jumps.h"
#include "hosts/drift/series.h"

namespace tof::drift {

// What one line of the table over dates spans.
enum class Period { kRun, kDay, kMonth, kYear };

struct AnalysisOptions {
  double jump_sigmas = 6.0;
  double jump_ppm = 5.0;         // smallest jump of the flight time
  double jump_percent = 50.0;    // smallest jump of the abundance, of the smaller one
  std::optional<Period> period;  // none: the shortest that makes at most kMostPeriods lines
};
inline constexpr std::size_t kMostPeriods = 31;

// Drift is that of the flight time, relative to the first point of the mass. The error that it
// makes in m/z is twice as large.
struct PeriodRow {
  std::string period;  // "2024-02-29 13:05:09", "2024-02-29", "2024-02", "2024"
  std::uint64_t runs = 0;
  double time_ns = 0.0;    // mean over the measurements
  double abundance = 0.0;  // mean over the measurements
  double drift_ppm = 0.0;
  std::size_t jumps = 0;  // in flight time or abundance
};

// For a curve: neighbouring points are joined until kMostCurvePoints are left.
struct CurvePoint {
  std::int64_t moment = 0;
  double drift_ppm = 0.0;
  double abundance = 0.0;
};
inline constexpr std::size_t kMostCurvePoints = 400;

struct MassDrift {
  std::int32_t mass = 0;  // index
  double first_time_ns = 0.0;
  double last_time_ns = 0.0;
  double first_abundance = 0.0;
  double last_abundance = 0.0;
  double last_ppm = 0.0;
  double lowest_ppm = 0.0;
  double highest_ppm = 0.0;
  double noise_ppm = 0.0;  // robust standard deviation of the steps from point to point
  std::vector<PeriodRow> periods;
  std::vector<CurvePoint> curve;
};

enum class Quantity { kFlightTime, kAbundance };

struct Jump {
  std::int64_t before = 0;  // moment of the last point before it
  std::int64_t moment = 0;  // of the first one after it
  std::int32_t mass = 0;
  Quantity quantity = Quantity::kFlightTime;
  double step = 0.0;   // ppm of the flight time, or per cent of the abundance before
  double value = 0.0;  // behind it: drift in ppm, or abundance
};

// The jumps of one quantity at one moment: what reaches all masses at once has another cause than
// what reaches one of them.
struct JointJump {
  const Jump* first = nullptr;
  std::size_t masses = 0;
  double lowest = 0.0;
  double highest = 0.0;
};

// Of jumps that are in the order of an InstrumentDrift; they outlive the result.
std::vector<JointJump> JointJumps(const std::vector<Jump>& jumps);

struct InstrumentDrift {
  std::string label;
  std::uint64_t runs = 0;
  std::int64_t first_moment = 0;
  std::int64_t last_moment = 0;
  Period period = Period::kRun;
  std::vector<MassDrift> masses;
  std::vector<Jump> jumps;  // by moment, then mass
};

InstrumentDrift Analyse(const Instrument& instrument, const AnalysisOptions& options);

}  // namespace tof::drift
