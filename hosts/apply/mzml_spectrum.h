// One spectrum of an mzML file: flight times in, m/z out.
#pragma once

#include <pugixml.hpp>
#include <string>

#include "hosts/apply/mass_axis.h"

namespace tof::apply {

// The "dataProcessing" that arrays refer to once their flight times are m/z.
inline constexpr const char* kDataProcessingId = "tofcal_apply";

// `text` is a "spectrum" element, `groups` the document's "referenceableParamGroupList" or empty.
// Result: the same bytes, except for the array of flight times: its numbers are m/z, in the
// precision and compression that they were in; its term is "m/z array" in m/z; it refers to
// kDataProcessingId. The flight times are in the "time array" of the spectrum or, as raw data that
// was never calibrated is kept, in its "m/z array"; in ns when no unit of time is given. A spectrum
// with neither comes back as it was. Raises an InputError whose place is inside `text`; `source` is
// the file's name.
std::string ConvertedSpectrum(const std::string& text, pugi::xml_node groups,
                              const std::string& source, MassAxis& axis);

}  // namespace tof::apply
