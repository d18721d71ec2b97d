#include <fmt/format.h>

#include "hosts/study/tables.h"

namespace tof::study {
namespace {

std::string InBand(VirtualRun run, int slices, std::uint64_t seeds) {
  Set(run.description, "AICSettlingTime_sec", slices);
  const Series series = RunSeriesWithFailures(std::move(run), seeds);
  if (series.results.empty()) return "all failed";
  const std::string rms = fmt::format("{:.3f}", FiguresOf(series).in_band.rms);
  return series.failed == 0 ? rms : fmt::format("{} ({} of {} failed)", rms, series.failed, seeds);
}

}  // namespace

std::string SettlingTable(std::uint64_t seeds) {
  constexpr double kSliceSec = 0.4;
  std::vector<std::vector<std::string>> rows{
      {"slices", "wait, s", "in band, by measurement", "in band, by mass"}};
  for (const int slices : {0, 1, 2, 3, 4, 6}) {
    rows.push_back({fmt::format("{}", slices), fmt::format("{:.1f}", kSliceSec * slices),
                    InBand(ByMeasurement(), slices, seeds), InBand(ByMass(), slices, seeds)});
  }
  return MarkdownTable(rows);
}

}  // namespace tof::study
