#include "instruments/conformance/calibrant_peaks.h"

#include <algorithm>
#include <cmath>

#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"

namespace tof::conformance {
namespace {

constexpr double kParsersOwnWindow = -1.0;
constexpr double kReadingTolerance = 0.2;

}  // namespace

PeakAttribsTable Parsed(Subject& subject, const std::vector<double>& masses) {
  return Given("SpecParser.parses-every-mass", [&] {
    PeakAttribsTable table = subject.parts.spec_parser->GetCalibrantPeakAttributes(
        Variant(BoundedArray<double>(masses)), kParsersOwnWindow);
    const std::int32_t last = static_cast<std::int32_t>(masses.size()) - 1;
    Require(table.LBound(1) == 0 && table.UBound(1) == 1, "", "");
    Require(table.LBound(2) == 0 && table.UBound(2) == last, "", "");
    return table;
  });
}

std::vector<CalibrantPeak> PeaksFound(Subject& subject, const std::vector<double>& masses) {
  const PeakAttribsTable table = Parsed(subject, masses);
  std::vector<CalibrantPeak> peaks;
  for (std::size_t k = 0; k < masses.size(); ++k) {
    const auto column = static_cast<std::int32_t>(k);
    const CalibrantPeak peak{masses[k], table(0, column), table(1, column)};
    if (peak.row0.abundance > 0.0) peaks.push_back(peak);
  }
  if (peaks.empty()) throw NotApplicable("SpecParser.finds-calibrants has to pass first");
  return peaks;
}

bool AssignedMassIsNear(const CalibrantPeak& peak) {
  constexpr double kNear = 0.05;
  return std::fabs(peak.row1.time - peak.mass) <= kNear * peak.mass;
}

CalibrantPeak StrongestCalibrant(Subject& subject) {
  const std::vector<CalibrantPeak> peaks = PeaksFound(subject, CalibrantsOf(subject));
  const CalibrantPeak strongest = *std::max_element(
      peaks.begin(), peaks.end(),
      [](const auto& a, const auto& b) { return a.row0.abundance < b.row0.abundance; });
  if (AssignedMassIsNear(strongest)) return strongest;
  throw NotApplicable("SpecParser.row-1-carries-the-assigned-mass has to pass first");
}

double AbundanceNow(Subject& subject, const CalibrantPeak& peak) {
  constexpr int kReadings = 3;
  double sum = 0.0;
  for (int i = 0; i < kReadings; ++i) {
    sum += subject.parts.spec_parser->GetPeakAttribute(PeakCalculationtype::abund, peak.row1.time,
                                                       kReadingTolerance);
  }
  return sum / kReadings;
}

double MassBeyondTheSpectrum(Subject& subject) {
  const Window window = AcquisitionWindowOf(subject);
  const auto coefficients = CurrentCoefficients(subject);
  return Given("MassCalCoefficients.mass-grows-with-time", [&] {
    const double mass = 2.0 * coefficients->TimeToMass(window.end_ns);
    Require(mass > 0.0, "", "");
    return mass;
  });
}

void RequireAboveTheBand(Subject& subject, const CalibrantPeak& peak) {
  const double abundance = Given("SpecParser.newest-spectrum-shows-the-same-abundance",
                                 [&] { return AbundanceNow(subject, peak); });
  if (abundance > BandOf(subject).maximum) return;
  throw NotApplicable("no calibrant is above the abundance band now, as one is that is searched");
}

void RequireEndInTheBand(Subject& subject, const CalibrantPeak& peak, double volts) {
  constexpr double kScatter = 1.25;  // of successive spectra
  constexpr double kLowerLimit = 20.0;
  const Band band = BandOf(subject);
  const double abundance = AbundanceNow(subject, peak);
  const bool in_band = abundance >= band.minimum / kScatter && abundance <= band.maximum * kScatter;
  Require(in_band || volts <= kLowerLimit,
          "m/z " + NumberText(peak.mass) + " with an abundance from " + NumberText(band.minimum) +
              " to " + NumberText(band.maximum) + ", or the lower limit of 20 V",
          "abundance " + NumberText(abundance) + " at " + NumberText(volts) + " V");
}

void SearchIfThereIsOne(const std::function<void()>& search) {
  constexpr std::int32_t kActionNotSupported = 445;
  try {
    search();
  } catch (const AutomationError& error) {
    if (error.number() != kActionNotSupported) throw;
    throw NotApplicable("the instrument has none: " + error.description());
  }
}

}  // namespace tof::conformance
