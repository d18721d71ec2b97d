// The element <recorded> of a description.
#pragma once

#include "instruments/description/recorded_description.h"
#include "instruments/description/xml_element.h"

namespace tof::description {

// Reads the <recorded> in `instrument`, which holds one.
RecordedDescription ReadRecordedSection(const XmlElement& instrument);

}  // namespace tof::description
