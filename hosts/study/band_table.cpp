#include <fmt/format.h>

#include "hosts/study/tables.h"

namespace tof::study {
namespace {

std::vector<std::string> BandRow(const char* way, const Series& series) {
  const BandHits hits = HitsOf(series);
  const auto share = [&hits](std::size_t count) {
    return fmt::format("{} ({:.1f} %)", count,
                       100.0 * static_cast<double>(count) / static_cast<double>(hits.masses));
  };
  return {way,
          fmt::format("{}", hits.masses),
          share(hits.stored_in_band),
          share(hits.expected_in_band),
          fmt::format("{:.1f}", MeanSpectra(series)),
          fmt::format("{:.0f}", MeanInstrumentSeconds(series))};
}

}  // namespace

std::string BandTable(const Ways& ways) {
  return MarkdownTable({{"way", "masses", "stored reading in the band", "expected in the band",
                         "spectra of a run", "seconds"},
                        BandRow("ramp, by measurement", ways.by_measurement),
                        BandRow("search of the parser", ways.parser_search),
                        BandRow("search of the firmware", ways.firmware_search)});
}

}  // namespace tof::study
