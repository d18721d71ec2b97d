// The element <recorded> of a description.
#pragma once

#include "instruments/description/xml_element.h"
#include "instruments/recorded/recorded_files.h"

namespace tof::description {

// Reads the <recorded> in `instrument`, which holds one.
recorded::RecordedFiles ReadRecordedSection(const XmlElement& instrument);

}  // namespace tof::description
