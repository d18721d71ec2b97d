#include "instruments/standin/spec_parser.h"

#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "component/automation/convert.h"
#include "component/automation/error.h"
#include "instruments/masstime/stored_peak_list.h"
#include "instruments/peaks/peak_finder.h"
#include "instruments/standin/abundance_search.h"
#include "instruments/standin/instrument_access.h"

namespace tof::standin {
namespace {

// As wide as every other look at a calibrant's abundance.
constexpr double kMassToleranceOfSearch = 0.2;

[[noreturn]] void RaiseInvalidCall(const std::string& reason) {
  throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall), reason);
}

// Runs the peak finder; what it refuses becomes an error of the automation rules.
template <typename Search>
auto Searched(Search&& search) {
  try {
    return search();
  } catch (const std::invalid_argument& error) {
    RaiseInvalidCall(error.what());
  }
}

masstime::MassTimeModel ModelOf(const InstrumentState& state) {
  return {StartingCalibration(state).coefficients, WindowOf(state)};
}

// Both rows of a mass; one that was not found has a flight time that spoils every average it gets
// into, where a guess would shift it unnoticed.
void FillRows(const std::optional<peaks::Peak>& peak, double mass,
              const masstime::MassTimeModel& model, PeakAttribs& row0, PeakAttribs& row1) {
  if (!peak) {
    row0.time = row1.time = std::numeric_limits<double>::quiet_NaN();
    return;
  }
  constexpr double kPpm = 1e6;
  const double assigned = masstime::TimeToMass(model, peak->time_ns);
  row0.time = peak->time_ns;
  row0.attribute48 = peak->fwhm_ns;
  row1.time = assigned;
  row1.attribute32 = (assigned - mass) / mass * kPpm;
  row0.abundance = row1.abundance = peak->abundance;
}

}  // namespace

PeakAttribsTable StandInSpecParser::GetCalibrantPeakAttributes(const Variant& masses,
                                                               double peak_find_window) {
  state_->gate.Enter(Operation::kSpecParserGetCalibrantPeakAttributes);
  const BoundedArray<double> expected = MassesFromCaller(masses);
  PeakAttribsTable table({0, 1}, {0, expected.UBound()});
  const masstime::MassTimeModel model = ModelOf(*state_);
  const spectra::SpectrumSource::SpectrumPtr spectrum = AcquireSpectrum(*state_);
  const auto found = Searched([&] {
    return peaks::FindCalibrants(*spectrum, std::vector<double>(expected.begin(), expected.end()),
                                 model, peak_find_window, state_->description.finder);
  });
  for (std::int32_t k = 0; k <= expected.UBound(); ++k) {
    FillRows(found[static_cast<std::size_t>(k)], expected(k), model, table(0, k), table(1, k));
  }
  return table;
}

double StandInSpecParser::GetPeakAttribute(PeakCalculationtype, double mass, double tolerance) {
  state_->gate.Enter(Operation::kSpecParserGetPeakAttribute);
  return Searched([&] {
    return peaks::MeasurePeakAbundance(*state_->source->Newest(), mass, tolerance, ModelOf(*state_),
                                       state_->description.finder);
  });
}

void StandInSpecParser::FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought,
                                  std::int32_t& count, std::shared_ptr<PeakList>& list) {
  state_->gate.Enter(Operation::kSpecParserFindPeaks);
  if (peaks_sought < 0) RaiseInvalidCall("A negative number of peaks can't be sought");
  const std::vector<peaks::Peak> found = Searched([&] {
    return peaks::FindPeaks(*state_->source->Newest(), start_ns, end_ns,
                            static_cast<std::size_t>(peaks_sought), ModelOf(*state_),
                            state_->description.finder);
  });
  auto result = std::make_shared<masstime::StoredPeakList>();
  for (const peaks::Peak& peak : found) {
    PeakRecord record;
    record.position = peak.time_ns;
    record.height = peak.height;
    result->Add(record);
  }
  count = static_cast<std::int32_t>(found.size());
  list = std::move(result);
}

bool StandInSpecParser::ShouldAvoidAIC(const Variant&, double&) {
  state_->gate.Enter(Operation::kSpecParserShouldAvoidAIC);
  return !state_->source->Control();
}

void StandInSpecParser::SearchTargetAbundance(double mass, double tolerance) {
  state_->gate.Enter(Operation::kSpecParserSearchTargetAbundance);
  const masstime::MassTimeModel model = ModelOf(*state_);
  const auto abundance_in = [&](const spectra::Spectrum& spectrum) {
    return Searched([&] {
      return peaks::MeasurePeakAbundance(spectrum, mass, kMassToleranceOfSearch, model,
                                         state_->description.finder);
    });
  };
  const VoltageRange range{.low_volts = CalibrationSettingOf(*state_, "AIC_RF_LowValue"),
                           .high_volts = CalibrationSettingOf(*state_, "AIC_RF_HighValue"),
                           .precision_volts = tolerance};
  SearchOnInstrument(*state_, "parser", abundance_in, TargetBandOf(*state_), range);
}

}  // namespace tof::standin
