// The pages of a program that was built without a chart library: their tables hold every number.
#include "hosts/report/page_assets.h"

namespace tof::report {

const std::string& ChartScript() {
  static const std::string none;
  return none;
}

std::string_view ChartScriptHash() {
  return "'none'";
}

const std::string& ChartLicences() {
  static const std::string none = "This program was built without charts.";
  return none;
}

}  // namespace tof::report
