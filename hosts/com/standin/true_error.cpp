#include "hosts/com/standin/true_error.h"

#include <algorithm>
#include <iterator>

#include "component/automation/error.h"
#include "instruments/spectra/input_error.h"
#include "instruments/standin/instrument_access.h"

namespace tof::com {
namespace {

using standin::MeasuredMass;
using standin::Truth;
using standin::TruthFigures;

constexpr std::int32_t kNotSupported = 445;

struct Group {
  const char* name;
  TruthFigures Truth::*figures;
  bool needs_abundances;
};
constexpr Group kGroups[] = {{"in_band", &Truth::in_band, false},
                             {"weak", &Truth::weak, false},
                             {"at_calibration", &Truth::at_calibration, true}};

struct Figure {
  const char* name;
  double TruthFigures::*value;
};
constexpr Figure kFigures[] = {{"rms_ppm", &TruthFigures::rms_ppm},
                               {"common_ppm", &TruthFigures::common_ppm},
                               {"mass_dependent_ppm", &TruthFigures::mass_dependent_ppm},
                               {"max_ppm", &TruthFigures::max_ppm}};

[[noreturn]] void RaiseInvalidCall(const std::string& text) {
  throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall), text);
}

void RequireAbundances(const TruthQuestion& question) {
  const auto known = [](const MeasuredMass& mass) { return mass.abundance.has_value(); };
  if (std::any_of(question.calibrants.begin(), question.calibrants.end(), known)) return;
  RaiseInvalidCall("The true error \"" + question.figure + "\" needs the abundances of the masses");
}

// "rms_ppm" and "max_ppm" are those of the band.
double FigureOf(const Truth& truth, const TruthQuestion& question) {
  if (question.figure == "limit_ppm") {
    RequireAbundances(question);
    return truth.limit_ppm;
  }
  if (question.figure == "rms_ppm") return truth.in_band.rms_ppm;
  if (question.figure == "max_ppm") return truth.in_band.max_ppm;
  for (const Group& group : kGroups) {
    for (const Figure& figure : kFigures) {
      if (question.figure != std::string(group.name) + "." + figure.name) continue;
      if (group.needs_abundances) RequireAbundances(question);
      return truth.*group.figures.*figure.value;
    }
  }
  RaiseInvalidCall("There is no true error " + spectra::Quoted(question.figure) +
                   "; expected one such as in_band.rms_ppm");
}

// What needs no abundance comes out the same for any.
std::vector<MeasuredMass> WithAbundances(std::vector<MeasuredMass> calibrants,
                                         const standin::InstrumentState& state) {
  const standin::AbundanceBand band = standin::TargetBandOf(state);
  for (MeasuredMass& mass : calibrants) {
    if (!mass.abundance) mass.abundance = (band.minimum + band.maximum) / 2.0;
  }
  return calibrants;
}

}  // namespace

double TrueErrorOf(const standin::StandInInstrument& instrument, const TruthQuestion& question) {
  if (instrument.Virtual() == nullptr) {
    throw AutomationError(kNotSupported,
                          "The true law of a recorded instrument is not known: only a virtual "
                          "instrument has true errors");
  }
  if (question.spectra < 1) RaiseInvalidCall("The times are averages of one spectrum or more");
  const std::int64_t collected =
      question.spectra * (question.aic ? std::ssize(question.calibrants) : 1);
  const auto truth =
      standin::TruthOf(instrument, WithAbundances(question.calibrants, instrument.State()),
                       question.spectra, collected);
  if (!truth) RaiseInvalidCall("True errors need two masses with a time, or more");
  return FigureOf(*truth, question);
}

}  // namespace tof::com
