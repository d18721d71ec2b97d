// Spectra in mzML, the exchange format of the HUPO Proteomics Standards Initiative, version 1.1.
#pragma once

#include <filesystem>
#include <vector>

#include "instruments/spectra/spectrum.h"

namespace tof::spectra {

enum class WhichSpectra { kFirst, kAll };

// The position axis of each spectrum (its "m/z array") holds flight times in ns, as raw
// time-of-flight data that was never calibrated is kept. Arrays are 32- or 64-bit floats,
// compressed with zlib or not at all; the terms may be written with the array or in a group that it
// refers to. The same checks as for text: strictly ascending times, finite numbers, at least two
// bins; the bin width is deduced. Raises an InputError with line and column. Result: at least one
// spectrum, in the file's order.
std::vector<Spectrum> ReadMzml(const std::filesystem::path& path, WhichSpectra which);

}  // namespace tof::spectra
