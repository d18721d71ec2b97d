// Which files a recorded instrument's spectra are in.
#pragma once

#include <filesystem>
#include <vector>

#include "instruments/spectra/mzml_reader.h"

namespace tof::recorded {

enum class SpectrumFormat { kText, kMzml };

struct RecordedFile {
  std::filesystem::path path;  // relative to the folder that the user names
  SpectrumFormat format = SpectrumFormat::kText;
  spectra::WhichSpectra which = spectra::WhichSpectra::kFirst;  // of an mzML file
};

struct RecordedFiles {
  std::vector<RecordedFile> files;  // at least one; acquired in this order, round and round
  double time_offset_ns = 0.0;      // added to every flight time of the files
  double seconds_per_spectrum = 1.0;
};

}  // namespace tof::recorded
