// The element <virtual> of a description.
#pragma once

#include "instruments/description/virtual_description.h"
#include "instruments/description/xml_element.h"

namespace tof::description {

// Reads the <virtual> in `instrument`, which holds one. Absent attributes keep the built-in
// instrument's values; absent calibrants mean that there are none. The window of the spectra isn't
// read here: it is the instrument's.
VirtualDescription ReadVirtualSection(const XmlElement& instrument, double window_start_us,
                                      double window_end_us);

}  // namespace tof::description
