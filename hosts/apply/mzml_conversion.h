// mzML: flight times in, m/z out, all else as it was.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "hosts/apply/mass_axis.h"
#include "hosts/apply/provenance.h"
#include "hosts/apply/text_conversion.h"

namespace tof::apply {

// Copies the file byte by byte, one spectrum at a time, and changes
//   - the array of flight times of each spectrum (mzml_spectrum.h),
//   - the lists of software and of data processing, which get an entry each, the facts among them,
//   - of an indexed file the offsets and the checksum, which are made right again.
// `progress` is called now and then with the bytes read. Raises an InputError, with line and
// column, for what can't be read, for a document without those lists, for one that has been through
// this already, and for one without flight times.
void ConvertMzml(const std::filesystem::path& input, const std::vector<Fact>& facts,
                 const std::string& version, MassAxis& axis, const Sink& sink,
                 const std::function<void(std::uint64_t)>& progress);

}  // namespace tof::apply
