#include "hosts/cli/replay_report.h"

#include <fmt/format.h>

#include "hosts/cli/json_document.h"

namespace tof::cli {
namespace {

Json DifferenceJson(const recording::Difference& difference) {
  return {{"line", difference.line},       {"call", difference.call},
          {"routine", difference.routine}, {"expected", difference.expected},
          {"came", difference.came},       {"first_part", difference.first_part}};
}

std::string DifferenceText(const std::string& recording, const recording::Difference& difference) {
  const std::string routine =
      difference.routine.empty() ? "outside of all routines" : "in " + difference.routine;
  std::string text =
      fmt::format("{}:{}: differs at call {}, {}\n  expected: {}\n  came:     {}\n", recording,
                  difference.line, difference.call, routine, difference.expected, difference.came);
  if (!difference.first_part.empty()) {
    text += fmt::format("  first difference in the {}\n", difference.first_part);
  }
  return text;
}

}  // namespace

std::string TableOf(const ReplayReport& report) {
  const auto& [difference, counts] = report.result;
  std::string text = difference ? DifferenceText(report.recording, *difference)
                                : fmt::format("{}: no difference\n", report.recording);
  return text + fmt::format("{} calls are the same, of them {} of the trace and {} log lines\n",
                            counts.calls, counts.trace_lines, counts.log_lines);
}

std::string JsonOf(const ReplayReport& report) {
  const auto& [difference, counts] = report.result;
  Json json;
  json["recording"] = report.recording;
  json["program"] = report.program;
  json["same"] = !difference.has_value();
  json["whole"] = !report.cut.has_value();
  json["difference"] = difference ? DifferenceJson(*difference) : Json();
  json["calls"] = counts.calls;
  json["trace_calls"] = counts.trace_lines;
  json["log_lines"] = counts.log_lines;
  json["ends_at_line"] = report.cut ? Json(report.cut->line) : Json();
  return DocumentText(json);
}

}  // namespace tof::cli
