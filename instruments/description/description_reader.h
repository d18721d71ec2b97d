// Descriptions of instruments from XML.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "instruments/description/instrument_description.h"

namespace tof::description {

// docs/instrument_description.md gives the elements and attributes. Anything that isn't one of
// them, and any value that can't be used, raises an InputError with line and column.
InstrumentDescription ReadDescription(const std::filesystem::path& path);

// The same for a text that is already in memory; `source` is its name in error messages.
InstrumentDescription ParseDescription(std::string text, std::string source);

// The built-in virtual instrument: the content of examples/virtual.xml when the program was built.
std::string_view BuiltInDescriptionText();
InstrumentDescription BuiltInDescription();

}  // namespace tof::description
