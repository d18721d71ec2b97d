// The peak finder of the spectrum parser, for virtual and recorded spectra alike.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "instruments/masstime/mass_time_model.h"
#include "instruments/peaks/isotopes.h"
#include "instruments/spectra/spectrum.h"

namespace tof::peaks {

struct FinderOptions {
  PickOptions pick;
  // t / (2 FWHM) when it is known; otherwise the width is taken from the spectrum's own peaks.
  std::optional<double> resolving_power;
};

// Stands for the finder's own window.
inline constexpr double kOwnWindow = -1.0;

// The peaks of `masses` (m/z), in their order, each the first (monoisotopic) peak of its isotope
// cluster when the cluster is resolved. `calibration` says where to look; `window_percent` how far
// to either side in per cent of the flight time (kOwnWindow: 2 %). Within the window the calibrants
// are found together: all of them have to fit one smooth correction of the expected times, which is
// what tells a calibrant from any other strong peak. A calibrant without a clear peak is nullopt;
// so is one of fewer than three whose window holds two clusters of like size. Raises
// std::invalid_argument for a spectrum or window that makes no sense.
std::vector<std::optional<Peak>> FindCalibrants(const spectra::Spectrum& spectrum,
                                                std::span<const double> masses,
                                                const masstime::MassTimeModel& calibration,
                                                double window_percent,
                                                const FinderOptions& options = {});

// The `count` most abundant isotope clusters between two flight times, or as many as there are,
// each as its first peak, in ascending time. `calibration` only gives the isotopes' spacing; it may
// be some per cent off.
std::vector<Peak> FindPeaks(const spectra::Spectrum& spectrum, double start_ns, double end_ns,
                            std::size_t count, const masstime::MassTimeModel& calibration,
                            const FinderOptions& options = {});

// The most abundant peak whose mass by `calibration` lies within `tolerance_mz` of `mass`; nullopt
// when there is none.
std::optional<Peak> FindPeakAtMass(const spectra::Spectrum& spectrum, double mass,
                                   double tolerance_mz, const masstime::MassTimeModel& calibration,
                                   const FinderOptions& options = {});

// The abundance of that peak, 0 when there is none.
double MeasurePeakAbundance(const spectra::Spectrum& spectrum, double mass, double tolerance_mz,
                            const masstime::MassTimeModel& calibration,
                            const FinderOptions& options = {});

// The abundance of the most abundant peak between two flight times, 0 when there is none.
double MeasureAbundanceBetween(const spectra::Spectrum& spectrum, double start_ns, double end_ns,
                               const FinderOptions& options = {});

}  // namespace tof::peaks
