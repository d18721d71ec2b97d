#include <array>

#include "hosts/cli/drift_report.h"
#include "hosts/cli/json_document.h"

namespace tof::cli {
namespace {

using drift::InstrumentDrift;
using drift::Quantity;

constexpr std::size_t kMostJumps = 10'000;
constexpr std::array<const char*, 4> kPeriodNames{"run", "day", "month", "year"};

Json FileJson(const DriftFile& file) {
  Json bad = Json::array();
  for (const drift::BadRow& row : file.read.first_bad_rows) {
    bad.push_back({{"line", row.line}, {"why", row.why}});
  }
  return {{"path", file.path},
          {"instrument", file.label},
          {"rows", file.read.rows},
          {"bad_rows", file.read.bad_rows},
          {"first_bad_rows", bad}};
}

Json MassJson(const drift::MassDrift& mass) {
  Json periods = Json::array();
  for (const drift::PeriodRow& row : mass.periods) {
    periods.push_back({{"period", row.period},
                       {"runs", row.runs},
                       {"time_ns", row.time_ns},
                       {"abundance", row.abundance},
                       {"drift_ppm", row.drift_ppm},
                       {"jumps", row.jumps}});
  }
  return {{"mass_index", mass.mass},
          {"first_time_ns", mass.first_time_ns},
          {"last_time_ns", mass.last_time_ns},
          {"first_abundance", mass.first_abundance},
          {"last_abundance", mass.last_abundance},
          {"drift_ppm", mass.last_ppm},
          {"lowest_ppm", mass.lowest_ppm},
          {"highest_ppm", mass.highest_ppm},
          {"noise_ppm", mass.noise_ppm},
          {"periods", periods}};
}

Json JumpsJson(const InstrumentDrift& instrument) {
  Json jumps = Json::array();
  for (const drift::Jump& jump : instrument.jumps) {
    if (jumps.size() == kMostJumps) break;
    const bool is_time = jump.quantity == Quantity::kFlightTime;
    jumps.push_back({{"before", drift::MomentText(jump.before)},
                     {"after", drift::MomentText(jump.moment)},
                     {"mass_index", jump.mass},
                     {"quantity", is_time ? "flight_time" : "abundance"},
                     {is_time ? "step_ppm" : "step_percent", jump.step}});
  }
  return jumps;
}

Json InstrumentJson(const InstrumentDrift& instrument) {
  Json json;
  json["label"] = instrument.label;
  json["runs"] = instrument.runs;
  const bool any = !instrument.masses.empty();
  json["from"] = any ? Json(drift::MomentText(instrument.first_moment)) : Json();
  json["to"] = any ? Json(drift::MomentText(instrument.last_moment)) : Json();
  json["period"] = kPeriodNames.at(static_cast<std::size_t>(instrument.period));
  json["masses"] = Json::array();
  for (const drift::MassDrift& mass : instrument.masses) json["masses"].push_back(MassJson(mass));
  json["jump_count"] = instrument.jumps.size();
  json["jumps"] = JumpsJson(instrument);
  return json;
}

}  // namespace

std::string JsonOf(const DriftReport& report) {
  Json json;
  json["ok"] = true;
  json["files"] = Json::array();
  for (const DriftFile& file : report.files) json["files"].push_back(FileJson(file));
  json["jump_rule"] = {{"sigmas", report.options.jump_sigmas},
                       {"smallest_ppm", report.options.jump_ppm},
                       {"smallest_percent", report.options.jump_percent}};
  json["runs_per_point"] = report.runs_per_point;
  json["instruments"] = Json::array();
  for (const InstrumentDrift& instrument : report.instruments) {
    json["instruments"].push_back(InstrumentJson(instrument));
  }
  return DocumentText(json);
}

}  // namespace tof::cli
