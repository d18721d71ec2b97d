// One calibration of a virtual instrument, and what only a virtual instrument tells about it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "hosts/cli/calibration_report.h"
#include "instruments/description/instrument_description.h"

namespace tof::study {

struct VirtualRun {
  description::InstrumentDescription description;
  std::uint64_t seed = 1;
  bool suppress_aic = false;
};

// A calibrant at the voltage that was chosen for it.
struct MassAtVoltage {
  double mass = 0.0;
  double volts = 0.0;
  double stored_abundance = 0.0;    // what was read when the voltage was chosen
  double expected_abundance = 0.0;  // without noise
};

struct VirtualResult {
  cli::CalibrationReport report;
  std::vector<MassAtVoltage> masses;  // of an abundance-immune calibration; else empty
  double drift_ppm = 0.0;             // mean of the spectra that the flight times are from
};

class CalibrationFailed : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Calibrates on the description's calibrant list, with its own defaults, in virtual time; the log
// files go to a folder that is removed again. Throws CalibrationFailed with the calibration's own
// words, std::runtime_error when there can be no such folder.
VirtualResult Run(const VirtualRun& run);

// The built-in instrument, for a study to change.
description::InstrumentDescription BuiltIn();
void Set(description::InstrumentDescription& description, const std::string& key, double value);

// The parameters of the physics.
virtual_instrument::VirtualSourceParameters& SourceOf(
    description::InstrumentDescription& description);
const virtual_instrument::Parameters& PhysicsOf(
    const description::InstrumentDescription& description);

// The mean abundance, without noise, of a calibrant at a voltage. NaN for a mass that the
// instrument makes no ions of.
double ExpectedAbundance(const description::InstrumentDescription& description, double mass,
                         double volts);

}  // namespace tof::study
