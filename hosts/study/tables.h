// The tables of docs/aic.md, each as Markdown, from series of calibrations.
#pragma once

#include <string>

#include "hosts/study/ways.h"

namespace tof::study {

std::string AccuracyTable(const Ways& ways);
std::string BandTable(const Ways& ways);

// These run their own series.
std::string DriftTable(std::uint64_t seeds);
std::string SettlingTable(std::uint64_t seeds);
std::string ScalarTable(std::uint64_t seeds);
std::string PlugTable(std::uint64_t seeds);
std::string AdjustmentTable(std::uint64_t seeds);
std::string CostTable();

}  // namespace tof::study
