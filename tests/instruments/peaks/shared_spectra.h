// Published real spectra, where the folder with them is present.
#pragma once

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "instruments/masstime/fit.h"
#include "instruments/peaks/peak_finder.h"
#include "instruments/spectra/spectrum.h"

namespace tof::peaks {

inline std::filesystem::path SharedFile(const std::string& name) {
  return std::filesystem::path(TOF_SHARED_DATA) / name;
}

inline bool HasSharedSpectra() {
  return std::filesystem::exists(SharedFile("ladder"));
}

// The number in `column` of every line that has one there, in the order of the file.
inline std::vector<double> ReadColumn(const std::string& name, std::size_t column) {
  std::ifstream file(SharedFile(name));
  std::vector<double> values;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string field;
    // Names of ions may hold blanks; tables are separated by tabs, spectra by blanks.
    const char separator = line.find('\t') != std::string::npos ? '\t' : ' ';
    for (std::size_t i = 0; i <= column && std::getline(fields, field, separator); ++i) {
    }
    char* end = nullptr;
    const double value = std::strtod(field.c_str(), &end);
    if (end != field.c_str() && line[0] != '#') values.push_back(value);
  }
  return values;
}

inline spectra::Spectrum ReadSpectrum(const std::string& name, double bin_width_ns) {
  return {ReadColumn(name, 0), ReadColumn(name, 1), bin_width_ns};
}

// A published spectrum and how its calibrants are found and fitted.
struct RealCase {
  std::string file;
  double bin_width_ns;
  std::vector<double> masses;
  masstime::MassTimeModel start;  // the calibration in force
  EdgeTiming edges;

  FinderOptions Options() const {
    FinderOptions options;
    options.pick.centroid = {CentroidMethod::kEdges, edges};
    return options;
  }
};

// From 1 % off in A and 50 ns off in t0.
inline RealCase LadderCase() {
  RealCase ladder{"ladder/spectrum.txt",
                  0.5,
                  ReadColumn("ladder/reference_masses.txt", 0),
                  {{6.4813e-4 * 1.01, 306.6 + 50.0}, {30'371.0, 99'314.0}},
                  {0.1, 0.9, 0.1}};
  ladder.masses.resize(29);  // those that were recorded
  return ladder;
}

// `day` is 1 to 3; from the constants in force when it was recorded. Without the partly overlapped
// ion and the saturated one.
inline RealCase BreathCase(std::size_t day) {
  std::vector<double> masses = ReadColumn("breath/reference_masses.tsv", 1);
  std::erase_if(masses, [](double mass) {
    return std::abs(mass - 85.1012) < 1e-3 || std::abs(mass - 59.0491) < 1e-3;
  });
  const double a_ns = ReadColumn("breath/constants.tsv", 5).at(day - 1);
  const double t0_ns = ReadColumn("breath/constants.tsv", 6).at(day - 1);
  return {"breath/ind1-" + std::to_string(day) + "_sum.txt",
          0.2,
          std::move(masses),
          {{1.0 / a_ns, t0_ns}, {7'940.0, 21'657.0}},
          {0.3, 0.9, 0.7}};
}

// From 0.5 % off in A and 20 ns off in t0.
inline RealCase LinearCase() {
  return {"linear_tof/spectrum.txt",
          0.2,
          ReadColumn("linear_tof/reference_masses.tsv", 1),
          {{1.3635e-3 * 1.005, 9.2 + 20.0}, {1'519.8, 21'520.0}},
          {0.3, 0.9, 0.0}};
}

// The masses that were found, with their flight times.
struct FoundCalibrants {
  std::vector<double> masses;
  std::vector<double> times_ns;
  masstime::Calibrants Get() const { return {masses, times_ns}; }
};

inline FoundCalibrants Found(std::span<const double> masses,
                             std::span<const std::optional<Peak>> peaks) {
  FoundCalibrants found;
  for (std::size_t i = 0; i < masses.size(); ++i) {
    if (!peaks[i]) continue;
    found.masses.push_back(masses[i]);
    found.times_ns.push_back(peaks[i]->time_ns);
  }
  return found;
}

inline FoundCalibrants FindIn(const spectra::Spectrum& spectrum, const RealCase& real,
                              const FinderOptions& options) {
  return Found(real.masses, FindCalibrants(spectrum, real.masses, real.start, kOwnWindow, options));
}

inline FoundCalibrants FindIn(const RealCase& real, const FinderOptions& options) {
  return FindIn(ReadSpectrum(real.file, real.bin_width_ns), real, options);
}

}  // namespace tof::peaks
