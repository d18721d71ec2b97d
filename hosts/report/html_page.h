// A page about one calibration.
#pragma once

#include <string>

#include "hosts/report/report_page.h"

namespace tof::report {

// One file that needs nothing else: its style, its charts and the library that draws them are in
// it. Every number of a chart is in a table too, so that the page can be read without them.
std::string HtmlOf(const ReportPage& page);

}  // namespace tof::report
