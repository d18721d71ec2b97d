// What every page has around its contents.
#pragma once

#include <string>

namespace tof::report {

struct PageFrame {
  std::string title;
  std::string first_section;  // id of the section that the link for keyboards leads to
  std::string program;        // "tofcal 1.2.3"
  std::string chart_data;     // JSON for the page's script: a list of charts, each with its id
};

// One file that needs nothing else: its style, its charts and the library that draws them are in
// it. `body` is HTML.
std::string InFrame(const PageFrame& frame, const std::string& body);

}  // namespace tof::report
