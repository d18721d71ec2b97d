#include <fmt/format.h>

#include "hosts/report/report_page.h"

namespace tof::report {
namespace {

// The reason, to go on in the same sentence.
std::string Reason(const ReportPage& page) {
  std::string text = page.reason;
  while (!text.empty() && (text.back() == '.' || text.back() == ' ')) text.pop_back();
  return text;
}

std::string Way(const ReportPage& page) {
  if (!page.aic) return "whether abundance-immune is not recorded";
  return *page.aic ? "abundance-immune" : "traditional, not abundance-immune";
}

std::string Pass(const ReportPage& page) {
  if (!page.passes) return "the pass is not recorded";
  switch (*page.passes) {
    case 0:
      return "before the first fitting pass";
    case 1:
      return "in the first fitting pass";
    case 2:
      return "in the second fitting pass, as the first gave bad coefficients";
    default:
      return fmt::format("in fitting pass {}", *page.passes);
  }
}

std::string Restored(const ReportPage& page) {
  std::string text =
      page.restored ? *page.restored : std::string("what was put back is not recorded");
  if (page.in_force) text += "; " + *page.in_force;
  return text;
}

}  // namespace

std::string VerdictSentence(const ReportPage& page) {
  const std::string end = "; " + Restored(page) + ".";
  switch (page.outcome) {
    case Outcome::kCalibrated:
      return "Calibrated: " + Way(page) + ", " + Pass(page) + end;
    case Outcome::kSkipped:
      return "Not calibrated, because the instrument's flags switch it off for autotunes" + end;
    case Outcome::kFailed: {
      std::string text = "Not calibrated: " + Reason(page) + "; " + Way(page) + ", " + Pass(page);
      if (page.stage) text += ", while " + *page.stage;
      return text + end;
    }
    case Outcome::kUnknown:
      break;
  }
  return "Whether it was calibrated cannot be told: " + Reason(page) + "; " + Way(page) + ", " +
         Pass(page) + end;
}

}  // namespace tof::report
