// What became of a spectrum, for the people and programs that read it.
#pragma once

#include <string>
#include <vector>

#include "hosts/apply/mass_axis.h"
#include "hosts/apply/provenance.h"

namespace tof::cli {

struct ApplyReport {
  std::string output;
  std::vector<apply::Fact> facts;
  apply::ConversionCounts counts;
};

std::string JsonOf(const ApplyReport& report);
std::string TableOf(const ApplyReport& report);

}  // namespace tof::cli
