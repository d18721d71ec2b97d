#include <array>
#include <cmath>

#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

void Initializes(Subject& subject) {
  const auto fresh = Given("InstrumentFactory.creates-every-collaborator",
                           [&] { return subject.parts.factory->CreateDataDictionary(); });
  Need(fresh).Initialize();
}

void GivesTheSetpointTable(Subject& subject) {
  Given("AcqController.prepares-setpoint-access", [&] {
    subject.parts.acq_controller->PrepareSetpointAccess();
    return subject.parts.acq_controller->PrepareSetpointTable();
  });
  Require(subject.parts.data_dictionary->GetSetpointTable() != nullptr, "a setpoint table", "none");
}

void FlagKeyIsNotEmpty(Subject& subject) {
  Require(!subject.parts.data_dictionary->GetFlagKey().empty(), "the key of a flag",
          "an empty text");
}

void TimeIsANumber(Subject& subject) {
  const double time_sec = subject.parts.data_dictionary->GetTimeValue();
  Require(std::isfinite(time_sec) && time_sec >= 0.0, "seconds, 0 or more", NumberText(time_sec));
}

void AcquisitionWindowHasALength(Subject& subject) {
  const std::int32_t start_us = subject.parts.data_dictionary->GetAcqStartTime();
  const std::int32_t end_us = subject.parts.data_dictionary->GetAcqEndTime();
  Require(start_us >= 0 && start_us < end_us, "a start of 0 us or more, and an end behind it",
          "start " + std::to_string(start_us) + ", end " + std::to_string(end_us));
}

void AcquisitionWindowHoldsTheCalibrants(Subject& subject) {
  constexpr double kSlack = 0.01;  // what coefficients that want calibrating may be off by
  const Window window = AcquisitionWindowOf(subject);
  const auto coefficients = CurrentCoefficients(subject);
  for (const double mass : CalibrantsOf(subject)) {
    const double time_ns = Given("MassCalCoefficients.time-and-mass-are-inverse",
                                 [&] { return coefficients->MassToTime(mass); });
    Require(time_ns > window.start_ns * (1.0 - kSlack) && time_ns < window.end_ns * (1.0 + kSlack),
            "m/z " + NumberText(mass) + ", which arrives at " + NumberText(time_ns / 1000.0) +
                " us, between the start and the end of the acquisition in us",
            "start " + NumberText(window.start_ns / 1000.0) + ", end " +
                NumberText(window.end_ns / 1000.0));
  }
}

void PresentModeIsKnown(Subject& subject) {
  DataDictionary& dictionary = *subject.parts.data_dictionary;
  dictionary.ModeUsesRfSetpoints(dictionary.GetModeName());
}

constexpr std::array kChecks{
    Check{"DataDictionary", "initializes",
          "A new data dictionary is initialised once, before anything is asked of it; an error "
          "there means that no calibrator can be created.",
          Initializes},
    Check{"DataDictionary", "gives-the-setpoint-table",
          "For every single access to a setpoint the table is fetched anew, behind the "
          "controller's two preparations: it is always there.",
          GivesTheSetpointTable},
    Check{"DataDictionary", "flag-key-is-not-empty",
          "The key that it names is looked up in the flags, and abundance-immune calibration is "
          "allowed only where that flag is \"No\": without a key it never is.",
          FlagKeyIsNotEmpty},
    Check{"DataDictionary", "time-is-a-number",
          "The instrument's time in seconds is turned into nanoseconds and stored with the "
          "coefficients: a finite number.",
          TimeIsANumber},
    Check{"DataDictionary", "acquisition-window-has-a-length",
          "Start and end of the acquisition, whole microseconds, bound the search for the peaks "
          "that A and t0 are estimated from: the end lies behind the start.",
          AcquisitionWindowHasALength},
    Check{"DataDictionary", "acquisition-window-holds-the-calibrants",
          "A calibrant that flies outside the acquisition can't be measured; a window in another "
          "unit than microseconds shows here.",
          AcquisitionWindowHoldsTheCalibrants},
    Check{"DataDictionary", "present-mode-is-known",
          "Special tunes set other setpoints in one mode than in another: the mode that the "
          "dictionary names is one that it can answer for.",
          PresentModeIsKnown},
};

}  // namespace

std::span<const Check> DataDictionaryChecks() {
  return kChecks;
}

}  // namespace tof::conformance
