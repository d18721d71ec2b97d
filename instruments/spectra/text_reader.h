// Spectra as two-column text.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "instruments/spectra/spectrum.h"

namespace tof::spectra {

// One bin a line: the flight time in ns and the intensity, separated by blanks or tabs. '#' starts
// a comment, empty lines are skipped, lines end with LF or CR LF. Times are strictly ascending, all
// numbers finite; at least two bins. The bin width is deduced (bin_width.h). Anything else raises
// an InputError with line and column.
Spectrum ReadTextSpectrum(const std::filesystem::path& path);

// The same for a text that is already in memory; `source` is its name in error messages.
Spectrum ParseTextSpectrum(std::string_view text, const std::string& source);

}  // namespace tof::spectra
