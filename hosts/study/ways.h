// The ways to measure calibrants, on the built-in instrument.
#pragma once

#include <cstdint>

#include "hosts/study/figures.h"

namespace tof::study {

VirtualRun ByMeasurement();  // a ramp, then the spectra of all masses in turn
VirtualRun ByMass();         // a ramp, then all spectra of a mass
VirtualRun ParserSearch();   // a search mass by mass, then as by measurement
VirtualRun FirmwareSearch();
VirtualRun Traditional();

// Each way over the same seeds.
struct Ways {
  Series by_measurement;
  Series by_mass;
  Series parser_search;
  Series firmware_search;
  Series traditional;
};
Ways RunAllWays(std::uint64_t seeds);

}  // namespace tof::study
