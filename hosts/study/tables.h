// The tables of docs/aic.md, each as Markdown, from series of calibrations.
#pragma once

#include <string>

#include "hosts/study/figures.h"

namespace tof::study {

// The ways to measure calibrants, each over the same seeds.
struct Ways {
  Series by_measurement;
  Series by_mass;
  Series parser_search;
  Series firmware_search;
  Series traditional;
};
Ways RunAllWays(std::uint64_t seeds);

// The runs of the ways.
VirtualRun ByMeasurement();
VirtualRun ByMass();
VirtualRun ParserSearch();
VirtualRun FirmwareSearch();

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
