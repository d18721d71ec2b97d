#include <algorithm>
#include <array>
#include <cmath>

#include "component/automation/convert.h"
#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/calibrant_peaks.h"
#include "instruments/conformance/checks.h"

namespace tof::conformance {
namespace {

std::string MassText(double mass) {
  return "m/z " + NumberText(mass);
}

void ParsesEveryMass(Subject& subject) {
  const std::vector<double> masses = CalibrantsOf(subject);
  const PeakAttribsTable table = subject.parts.spec_parser->GetCalibrantPeakAttributes(
      Variant(BoundedArray<double>(masses)), -1.0);
  const auto bounds = [](std::int32_t lower, std::int32_t upper) {
    return std::to_string(lower) + " to " + std::to_string(upper);
  };
  const std::string rows = bounds(table.LBound(1), table.UBound(1));
  const std::string columns = bounds(table.LBound(2), table.UBound(2));
  const std::string all = bounds(0, static_cast<std::int32_t>(masses.size()) - 1);
  Require(rows == "0 to 1" && columns == all, "rows 0 to 1, columns " + all,
          "rows " + rows + ", columns " + columns);
}

void FindsCalibrants(Subject& subject) {
  const std::vector<double> masses = CalibrantsOf(subject);
  const PeakAttribsTable table = Parsed(subject, masses);
  bool any = false;
  for (std::int32_t k = 0; k <= table.UBound(2); ++k) {
    any = any || table(0, k).abundance > 0.0 || table(1, k).abundance > 0.0;
  }
  Require(any, "an abundance above 0 for at least one of the calibrants", "none");
}

void Row0CarriesTheFlightTime(Subject& subject) {
  constexpr double kNear = 0.05;
  const auto coefficients = CurrentCoefficients(subject);
  for (const CalibrantPeak& peak : PeaksFound(subject, CalibrantsOf(subject))) {
    const double expected_ns = Given("MassCalCoefficients.time-and-mass-are-inverse",
                                     [&] { return coefficients->MassToTime(peak.mass); });
    RequireNear("flight time in ns of " + MassText(peak.mass), peak.row0.time, expected_ns,
                expected_ns * kNear);
  }
}

void Row0CarriesAPeakWidth(Subject& subject) {
  for (const CalibrantPeak& peak : PeaksFound(subject, CalibrantsOf(subject))) {
    Require(std::isfinite(peak.row0.attribute48), "a number at byte 48 for " + MassText(peak.mass),
            NumberText(peak.row0.attribute48));
  }
}

void Row1CarriesTheAssignedMass(Subject& subject) {
  for (const CalibrantPeak& peak : PeaksFound(subject, CalibrantsOf(subject))) {
    Require(AssignedMassIsNear(peak), "a mass near " + MassText(peak.mass),
            NumberText(peak.row1.time));
  }
}

void Row1CarriesTheMassError(Subject& subject) {
  for (const CalibrantPeak& peak : PeaksFound(subject, CalibrantsOf(subject))) {
    if (!AssignedMassIsNear(peak)) {
      throw NotApplicable("SpecParser.row-1-carries-the-assigned-mass has to pass first");
    }
    const double difference = peak.row1.time - peak.mass;
    const double error = peak.row1.attribute32;
    const bool same_sign =
        (error > 0.0) == (difference > 0.0) && (error < 0.0) == (difference < 0.0);
    Require(std::isfinite(error) && same_sign,
            "an error of the sign of " + NumberText(difference) + " for " + MassText(peak.mass),
            NumberText(error));
  }
}

void BothRowsCarryTheAbundance(Subject& subject) {
  const std::vector<double> masses = CalibrantsOf(subject);
  const PeakAttribsTable table = Parsed(subject, masses);
  for (std::int32_t k = 0; k <= table.UBound(2); ++k) {
    Require(table(0, k).abundance == table(1, k).abundance,
            "the same abundance in both rows for " + MassText(masses[static_cast<std::size_t>(k)]),
            NumberText(table(0, k).abundance) + " and " + NumberText(table(1, k).abundance));
  }
}

void MassesKeepTheirOrder(Subject& subject) {
  std::vector<double> masses = CalibrantsOf(subject);
  std::reverse(masses.begin(), masses.end());
  const std::vector<CalibrantPeak> peaks = PeaksFound(subject, masses);
  if (peaks.size() < 2) throw NotApplicable("fewer than two calibrants are found");
  for (std::size_t k = 1; k < peaks.size(); ++k) {
    Require(peaks[k].row0.time < peaks[k - 1].row0.time,
            "descending flight times for descending masses",
            NumberText(peaks[k].row0.time) + " of " + MassText(peaks[k].mass) + " behind " +
                NumberText(peaks[k - 1].row0.time));
  }
}

// Both rows of a mass that no spectrum shows, asked for behind the calibrants.
std::array<PeakAttribs, 2> RowsOfAMissingMass(Subject& subject) {
  std::vector<double> masses = CalibrantsOf(subject);
  masses.push_back(MassBeyondTheSpectrum(subject));
  const PeakAttribsTable table = Parsed(subject, masses);
  return {table(0, table.UBound(2)), table(1, table.UBound(2))};
}

void MissingMassHasNoAbundance(Subject& subject) {
  for (const PeakAttribs& row : RowsOfAMissingMass(subject)) {
    RequireNear("abundance of a mass beyond the spectrum", row.abundance, 0.0, 0.0);
  }
}

void MissingMassHasNoTime(Subject& subject) {
  for (const PeakAttribs& row : RowsOfAMissingMass(subject)) {
    Require(std::isnan(row.time), "NaN as the time of a mass beyond the spectrum",
            NumberText(row.time));
  }
}

void NewestSpectrumShowsTheSameAbundance(Subject& subject) {
  constexpr double kScatter = 2.0;
  const CalibrantPeak peak = StrongestCalibrant(subject);
  const double abundance = AbundanceNow(subject, peak);
  Require(abundance > peak.row0.abundance / kScatter && abundance < peak.row0.abundance * kScatter,
          "an abundance near " + NumberText(peak.row0.abundance) + " of the peak at " +
              MassText(peak.row1.time),
          NumberText(abundance));
}

void NoPeakIsNoAbundance(Subject& subject) {
  const double abundance = subject.parts.spec_parser->GetPeakAttribute(
      PeakCalculationtype::abund, MassBeyondTheSpectrum(subject), 0.2);
  RequireNear("abundance at a mass beyond the spectrum", abundance, 0.0, 0.0);
}

struct PeakSearch {
  std::int32_t count = 0;
  std::shared_ptr<PeakList> list;
};

PeakSearch Searched(Subject& subject, const Window& range, std::int32_t peaks_sought) {
  PeakSearch search;
  subject.parts.spec_parser->FindPeaks(range.start_ns, range.end_ns, peaks_sought, search.count,
                                       search.list);
  return search;
}

// The records of the list that a search answers with.
std::vector<PeakRecord> RecordsFound(Subject& subject, const Window& range,
                                     std::int32_t peaks_sought) {
  return Given("SpecParser.finds-peaks", [&] {
    const PeakSearch search = Searched(subject, range, peaks_sought);
    std::vector<PeakRecord> records(static_cast<std::size_t>(Need(search.list).Count()));
    std::int32_t index = 0;
    for (PeakRecord& record : records) record = search.list->GetRecord(index++);
    return records;
  });
}

constexpr std::int32_t kMany = 20;

void FindsPeaks(Subject& subject) {
  const PeakSearch search = Searched(subject, AcquisitionWindowOf(subject), kMany);
  Require(search.list != nullptr, "a list of peaks", "none");
  Require(search.list->Count() > 0, "peaks between start and end of the acquisition, in ns",
          "an empty list");
}

void FindsAtMostTheNumberSought(Subject& subject) {
  constexpr std::size_t kSought = 2;
  const auto found = RecordsFound(subject, AcquisitionWindowOf(subject), kSought);
  Require(found.size() <= kSought, "two peaks at most when two are sought",
          std::to_string(found.size()));
}

void CountIsThatOfTheList(Subject& subject) {
  const PeakSearch search = Given("SpecParser.finds-peaks", [&] {
    PeakSearch found = Searched(subject, AcquisitionWindowOf(subject), kMany);
    Need(found.list);
    return found;
  });
  Require(search.count == search.list->Count(),
          "the number of records in the list, " + std::to_string(search.list->Count()),
          std::to_string(search.count));
}

void PeaksLieInTheRange(Subject& subject) {
  const Window whole = AcquisitionWindowOf(subject);
  const double third_ns = (whole.end_ns - whole.start_ns) / 3.0;
  const Window middle{whole.start_ns + third_ns, whole.end_ns - third_ns};
  for (const PeakRecord& record : RecordsFound(subject, middle, kMany)) {
    Require(record.position >= middle.start_ns && record.position <= middle.end_ns,
            "flight times from " + NumberText(middle.start_ns) + " to " +
                NumberText(middle.end_ns) + " ns",
            NumberText(record.position));
  }
}

void PeaksHaveAHeight(Subject& subject) {
  for (const PeakRecord& record : RecordsFound(subject, AcquisitionWindowOf(subject), kMany)) {
    Require(record.height > 0.0, "a height above 0 at byte 40", NumberText(record.height));
  }
}

void AvoidingAicKeepsTheWidthUsable(Subject& subject) {
  double width = 10.0;
  subject.parts.spec_parser->ShouldAvoidAIC(Variant(BoundedArray<double>(CalibrantsOf(subject))),
                                            width);
  Require(std::isfinite(width) && width > 0.0, "a width above 0, 10 unless it is changed",
          NumberText(width));
}

void SearchEndsInTheBand(Subject& subject) {
  constexpr double kSearchTolerance = 0.1;
  const CalibrantPeak peak = StrongestCalibrant(subject);
  RequireAboveTheBand(subject, peak);
  MovingTheRfVoltage(subject, [&](std::int32_t rf_id) {
    SearchIfThereIsOne([&] {
      subject.parts.spec_parser->SearchTargetAbundance(peak.row1.time, kSearchTolerance);
    });
    RequireEndInTheBand(subject, peak, ToDouble(SetpointsOf(subject)->GetSetpoint(rf_id)));
  });
}

constexpr std::array kChecks{
    Check{"SpecParser", "parses-every-mass",
          "A parsed spectrum has the rows 0 and 1 and a column for each mass that was asked for, "
          "found or not: all the bookkeeping goes by these indices.",
          ParsesEveryMass},
    Check{
        "SpecParser", "finds-calibrants",
        "With the coefficients in force and the parser's own window (-1), calibrants are found in "
        "a spectrum: at least one of them.",
        FindsCalibrants},
    Check{"SpecParser", "row-0-carries-the-flight-time",
          "What is calibrated are the flight times at byte 24 of row 0: in ns, and near where the "
          "coefficients in force expect the mass.",
          Row0CarriesTheFlightTime},
    Check{"SpecParser", "row-0-carries-a-peak-width",
          "The number at byte 48 of row 0, a peak width by convention, is averaged and reported: "
          "never NaN for a peak that was found.",
          Row0CarriesAPeakWidth},
    Check{"SpecParser", "row-1-carries-the-assigned-mass",
          "Byte 24 of row 1 is the mass that the coefficients in force give the peak; reports "
          "compare it with the mass that was asked for.",
          Row1CarriesTheAssignedMass},
    Check{"SpecParser", "row-1-carries-the-mass-error",
          "Byte 32 of row 1 is the error of the assigned mass, in the parser's own unit: positive "
          "when the assigned mass is too high.",
          Row1CarriesTheMassError},
    Check{"SpecParser", "both-rows-carry-the-abundance",
          "Voltages are chosen by the abundance in row 0, what is stored and averaged is that in "
          "row 1: byte 40 of both rows is the same number.",
          BothRowsCarryTheAbundance},
    Check{"SpecParser", "masses-keep-their-order",
          "The columns are in the order of the masses that were asked for, whatever that is; a "
          "parser that sorts them gives each mass another one's time.",
          MassesKeepTheirOrder},
    Check{"SpecParser", "missing-mass-has-no-abundance",
          "A mass without a peak has the abundance 0 in both rows, so that no voltage is chosen by "
          "it.",
          MissingMassHasNoAbundance},
    Check{"SpecParser", "missing-mass-has-no-time",
          "A mass without a peak has the time NaN in both rows, which ends a calibration; a guess "
          "or a 0 would shift an average unnoticed.",
          MissingMassHasNoTime},
    Check{"SpecParser", "newest-spectrum-shows-the-same-abundance",
          "GetPeakAttribute reads the newest spectrum on the same scale as a parsed one: a band "
          "that is reached by the one is judged by the other.",
          NewestSpectrumShowsTheSameAbundance},
    Check{"SpecParser", "no-peak-is-no-abundance",
          "Where no peak lies within the tolerance of the mass, its abundance is 0: not an error, "
          "and not that of another peak.",
          NoPeakIsNoAbundance},
    Check{"SpecParser", "finds-peaks",
          "A and t0 are estimated from the peaks of the newest spectrum, whatever their masses: "
          "between start and end of the acquisition there are some.",
          FindsPeaks},
    Check{"SpecParser", "finds-at-most-the-number-sought",
          "Every pair of a peak and a mass is tried in that estimate: more peaks than were sought "
          "take far longer and fit by chance.",
          FindsAtMostTheNumberSought},
    Check{"SpecParser", "count-is-that-of-the-list",
          "The count that comes back beside the list is the number of its records.",
          CountIsThatOfTheList},
    Check{"SpecParser", "peaks-lie-in-the-range",
          "Light and heavy peaks are sought apart: a peak's position is its flight time in ns, and "
          "lies between the two that were given.",
          PeaksLieInTheRange},
    Check{
        "SpecParser", "peaks-have-a-height",
        "The number at byte 40 of a record is the height of the peak; one without is dropped when "
        "the list is prepared.",
        PeaksHaveAHeight},
    Check{"SpecParser", "avoiding-aic-keeps-the-width-usable",
          "Asked whether to keep abundance-immune calibration off, the parser may change the "
          "peak-find width that it is given: to a number above 0, as it becomes the window.",
          AvoidingAicKeepsTheWidthUsable},
    Check{"SpecParser", "search-ends-in-the-band",
          "SearchTargetAbundance moves the RF voltage and leaves it where the peak is in the "
          "abundance band, or at the lower limit. An instrument without it raises error 445.",
          SearchEndsInTheBand},
};

}  // namespace

std::span<const Check> SpecParserChecks() {
  return kChecks;
}

}  // namespace tof::conformance
