#include "hosts/cli/spectrum_pairs.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "hosts/cli/spectrum_format.h"
#include "instruments/peaks/peak_finder.h"
#include "instruments/spectra/mzml_reader.h"
#include "instruments/spectra/text_reader.h"

namespace tof::cli {
namespace {

spectra::Spectrum ReadSpectrum(const std::filesystem::path& path) {
  if (!IsMzml(path)) return spectra::ReadTextSpectrum(path);
  return std::move(spectra::ReadMzml(path, spectra::WhichSpectra::kFirst).front());
}

}  // namespace

SpectrumPairs PairsFromSpectrum(const FitOptions& options) {
  const std::vector<double> masses = MassesFromListOrFile(options.masses);
  const spectra::Spectrum spectrum = ReadSpectrum(options.spectrum);

  SpectrumPairs pairs;
  pairs.window = {spectrum.time_ns.front(), spectrum.time_ns.back()};
  const masstime::MassTimeModel start{{*options.a_per_ns, *options.t0_ns}, pairs.window};
  const auto peaks = peaks::FindCalibrants(spectrum, masses, start,
                                           options.peak_window.value_or(peaks::kOwnWindow));
  for (std::size_t i = 0; i < masses.size(); ++i) {
    if (!peaks[i]) {
      pairs.masses_without_peak.push_back(masses[i]);
      continue;
    }
    pairs.found.masses.push_back(masses[i]);
    pairs.found.times_ns.push_back(peaks[i]->time_ns);
  }
  return pairs;
}

}  // namespace tof::cli
