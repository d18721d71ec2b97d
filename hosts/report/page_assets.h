// What the build puts into the program for its pages.
#pragma once

#include <string>
#include <string_view>

namespace tof::report {

std::string_view PageStyle();

// Draws the charts; the library that it uses is in it. Empty in a program built without charts.
const std::string& ChartScript();
// What a content security policy calls the script: "sha256-...".
std::string_view ChartScriptHash();
// Notices and licences that the library asks to be passed on.
const std::string& ChartLicences();

}  // namespace tof::report
