// Two-column text: flight times in, m/z out.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "hosts/apply/mass_axis.h"
#include "hosts/apply/provenance.h"

namespace tof::apply {

// Takes the output piece by piece.
using Sink = std::function<void(std::string_view)>;

// Reads "time_ns intensity" lines (instruments/spectra/text_reader.h) one by one and writes each
// with its first column replaced by m/z, to the last digit; whatever else is in the line stays. The
// facts go in front as comment lines, and the comment lines of the input follow their line with
// "# input:". `progress` is called now and then with the bytes read. Raises an InputError with line
// and column for what the reader refuses, and for a text that has its m/z already.
void ConvertText(const std::filesystem::path& input, const std::vector<Fact>& facts, MassAxis& axis,
                 const Sink& sink, const std::function<void(std::uint64_t)>& progress);

}  // namespace tof::apply
