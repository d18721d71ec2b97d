// The element <peak_finder> of a description.
#pragma once

#include "instruments/description/xml_element.h"
#include "instruments/peaks/peak_finder.h"

namespace tof::description {

// Reads the <peak_finder> in `instrument`, if it holds one. What is absent keeps the finder's own
// values.
peaks::FinderOptions ReadFinderSection(const XmlElement& instrument);

}  // namespace tof::description
