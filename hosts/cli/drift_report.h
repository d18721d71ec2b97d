// What the data-set files of some instruments came to, for the people and programs that read it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hosts/drift/analysis.h"

namespace tof::cli {

struct DriftFile {
  std::string path;
  std::string label;  // of its instrument
  drift::ReadingResult read;
};

struct DriftReport {
  std::vector<DriftFile> files;
  std::vector<drift::InstrumentDrift> instruments;
  drift::AnalysisOptions options;
  std::uint32_t runs_per_point = 1;
};

std::string JsonOf(const DriftReport& report);
std::string TableOf(const DriftReport& report);
// A page with charts.
std::string HtmlOf(const DriftReport& report);

}  // namespace tof::cli
