// The element <virtual> of a description.
#pragma once

#include "instruments/description/xml_element.h"
#include "instruments/virtual/virtual_source.h"

namespace tof::description {

// Reads the <virtual> in `instrument`, which holds one. Absent attributes keep the built-in
// instrument's values; absent calibrants mean that there are none. The window of the spectra isn't
// read here: it is the instrument's.
virtual_instrument::VirtualSourceParameters ReadVirtualSection(const XmlElement& instrument,
                                                               double window_start_us,
                                                               double window_end_us);

}  // namespace tof::description
