#include "instruments/standin/voltage_search.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "component/automation/error.h"
#include "component/automation/number_text.h"

namespace tof::standin {
namespace {

// A reading ends the search when it is this far inside the band: three standard deviations of a
// reading of 600 ions are 12 per cent of it.
constexpr double kMarginAboveMinimum = 1.15;
constexpr double kMarginBelowMaximum = 0.87;
constexpr double kMostCoarseSteps = 100.0;
constexpr double kFinestPrecision = 1e-6;  // of the range, so that bisecting ends whatever it is

struct Reading {
  double volts = 0.0;
  double abundance = 0.0;
};

class Search {
 public:
  Search(const AbundanceAt& abundance_at, const AbundanceBand& band)
      : abundance_at_(abundance_at), band_(band), aim_(std::sqrt(band.minimum * band.maximum)) {}

  Reading Read(double volts) const { return {volts, abundance_at_(volts)}; }
  bool IsAboveAim(const Reading& reading) const { return reading.abundance > aim_; }
  bool IsWellInside(const Reading& reading) const {
    return reading.abundance >= kMarginAboveMinimum * band_.minimum &&
           reading.abundance <= kMarginBelowMaximum * band_.maximum;
  }

  // `above` and `below` have the aim between them.
  double Bisect(Reading above, Reading below, double precision_volts) const {
    while (std::abs(above.volts - below.volts) > precision_volts) {
      const Reading middle = Read(0.5 * (above.volts + below.volts));
      if (IsWellInside(middle)) return middle.volts;
      (IsAboveAim(middle) ? above : below) = middle;
    }
    return above.abundance / aim_ < aim_ / below.abundance ? above.volts : below.volts;
  }

 private:
  const AbundanceAt& abundance_at_;
  const AbundanceBand& band_;
  double aim_;
};

void Require(bool good, const std::string& refused) {
  if (good) return;
  throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                        "Can't search for an abundance: " + refused);
}

void Validate(const AbundanceBand& band, const VoltageRange& range) {
  // Not below 0 but above: the aim is a geometric middle.
  Require(band.minimum > 0.0 && band.maximum > band.minimum && std::isfinite(band.maximum),
          "the band from " + NumberText(band.minimum) + " to " + NumberText(band.maximum) +
              " is not one of positive numbers, in ascending order");
  Require(std::isfinite(range.low_volts) && std::isfinite(range.high_volts) &&
              range.low_volts < range.high_volts,
          "the voltages from " + NumberText(range.low_volts) + " to " +
              NumberText(range.high_volts) + " are not in ascending order");
  Require(range.coarse_step_volts > 0.0 && range.precision_volts > 0.0,
          "step and precision must be above 0");
}

std::vector<double> CoarseVoltages(const VoltageRange& range) {
  const double width = range.high_volts - range.low_volts;
  const double step = std::max(range.coarse_step_volts, width / kMostCoarseSteps);
  std::vector<double> voltages;
  for (double offset = 0.0; offset < width; offset += step) {
    voltages.push_back(range.low_volts + offset);
  }
  voltages.push_back(range.high_volts);
  return voltages;
}

}  // namespace

double FindVoltageInBand(const AbundanceAt& abundance_at, const AbundanceBand& band,
                         const VoltageRange& range) {
  Validate(band, range);
  const double precision_volts =
      std::max(range.precision_volts, kFinestPrecision * (range.high_volts - range.low_volts));
  const Search search(abundance_at, band);
  std::vector<Reading> coarse;
  for (const double volts : CoarseVoltages(range)) {
    coarse.push_back(search.Read(volts));
    if (search.IsWellInside(coarse.back())) return volts;
  }
  const auto by_abundance = [](const Reading& a, const Reading& b) {
    return a.abundance < b.abundance;
  };
  const auto is_below = [&](const Reading& reading) { return !search.IsAboveAim(reading); };

  const auto top = std::max_element(coarse.begin(), coarse.end(), by_abundance);
  if (is_below(*top)) return top->volts;
  if (is_below(coarse.front())) {
    const auto rising = std::find_if(std::make_reverse_iterator(top), coarse.rend(), is_below);
    return search.Bisect(*rising.base(), *rising, precision_volts);
  }
  const auto falling = std::find_if(top, coarse.end(), is_below);
  if (falling != coarse.end()) {
    return search.Bisect(*std::prev(falling), *falling, precision_volts);
  }
  return std::min_element(coarse.begin(), coarse.end(), by_abundance)->volts;
}

}  // namespace tof::standin
