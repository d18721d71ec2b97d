// Every peak of a trace that stands out of its surroundings.
#pragma once

#include <vector>

#include "instruments/peaks/centroid.h"
#include "instruments/peaks/peak_width.h"
#include "instruments/peaks/trace.h"

namespace tof::peaks {

// `height` and `abundance` are in the spectrum's intensity units, above the local baseline.
struct Peak {
  double time_ns = 0.0;    // centroid
  double height = 0.0;     // of the highest bin
  double abundance = 0.0;  // sum of the bins within 1.5 FWHM of the centroid
  double fwhm_ns = 0.0;    // measured
  double snr = 0.0;        // smoothed height over the noise of equally smoothed surroundings
};

struct PickOptions {
  // Smallest signal-to-noise ratio of a peak. Five standard deviations are met by chance about once
  // in the bins of some ten spectra.
  double min_snr = 5.0;
  CentroidOptions centroid;
};

// Peaks in ascending time. The trace is smoothed over a peak width; baseline and noise are the
// median and the median deviation of pieces of many peak widths, so that neither a peak nor an
// isotope cluster lifts them.
std::vector<Peak> PickPeaks(const Trace& trace, const PeakWidthModel& width,
                            const PickOptions& options);

}  // namespace tof::peaks
