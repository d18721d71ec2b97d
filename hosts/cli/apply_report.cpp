#include "hosts/cli/apply_report.h"

#include <fmt/format.h>

#include "hosts/cli/json_document.h"

namespace tof::cli {

std::string JsonOf(const ApplyReport& report) {
  Json json;
  json["ok"] = true;
  json["output"] = report.output;
  json["provenance"] = Json::object();
  for (const apply::Fact& fact : report.facts) json["provenance"][fact.name] = fact.value;
  json["spectra"] = report.counts.spectra;
  json["bins"] = report.counts.bins;
  json["bins_outside_window"] = report.counts.outside_window;
  json["bins_before_t0"] = report.counts.before_t0;
  json["mz_terms_kept"] = report.counts.stale_mz_terms;
  return DocumentText(json);
}

std::string TableOf(const ApplyReport& report) {
  const apply::ConversionCounts& counts = report.counts;
  std::string text;
  for (const apply::Fact& fact : report.facts) {
    text += fmt::format("{:<18} {}\n", fact.name, fact.value);
  }
  text += fmt::format("\n{}: {} spectra, {} bins\n", report.output, counts.spectra, counts.bins);
  if (counts.outside_window > 0) {
    text += fmt::format(
        "{} bins lie outside the window of the calibration: no calibrant says how "
        "far to trust them\n",
        counts.outside_window);
  }
  if (counts.before_t0 > 0) {
    text += fmt::format("{} bins lie before t0, where no ion can arrive: their m/z is negative\n",
                        counts.before_t0);
  }
  if (counts.stale_mz_terms > 0) {
    text += fmt::format(
        "{} terms that state an m/z of a spectrum (base peak, lowest, highest) are "
        "kept as they were\n",
        counts.stale_mz_terms);
  }
  return text;
}

}  // namespace tof::cli
