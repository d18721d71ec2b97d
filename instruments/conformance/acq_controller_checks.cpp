#include <array>
#include <cmath>

#include "component/automation/convert.h"
#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/shifted_fit.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

constexpr double kRelativeRounding = 1e-9;
constexpr double kRoundingNs = 1e-6;

std::shared_ptr<AcqController> FreshController(Subject& subject) {
  return Given("InstrumentFactory.creates-every-collaborator", [&] {
    auto fresh = subject.parts.factory->CreateAcqController();
    Need(fresh);
    return fresh;
  });
}

void Initializes(Subject& subject) {
  const auto fresh = FreshController(subject);
  fresh->InitializeController(0);
  fresh->InitializeAcquisition(0);
}

void PreparesSetpointAccess(Subject& subject) {
  subject.parts.acq_controller->PrepareSetpointAccess();
  subject.parts.acq_controller->PrepareSetpointTable();
}

void NoAbortUnlessAsked(Subject& subject) {
  const std::int16_t asked = subject.parts.acq_controller->IsAbortRequested();
  Require(asked == 0, "0", std::to_string(asked));
}

void AbortIsSeen(Subject& subject) {
  if (!subject.abort.ask || !subject.abort.withdraw) {
    throw NotApplicable("the suite was given no way to ask for an abort");
  }
  subject.abort.ask();
  ThenPutBack(
      [&] {
        Require(subject.parts.acq_controller->IsAbortRequested() != 0,
                "a value other than 0 once the user asked for an abort", "0");
      },
      subject.abort.withdraw);
}

void ScaleFactorIsPositive(Subject& subject) {
  const double factor = subject.parts.acq_controller->GetScaleFactor();
  Require(std::isfinite(factor) && factor > 0.0, "a finite number above 0", NumberText(factor));
}

void CurrentCoefficientsAreUsable(Subject& subject) {
  const auto coefficients = subject.parts.acq_controller->GetCurrentMassCalObject();
  Require(coefficients != nullptr, "a coefficients object", "none");
  const CoefficientRecord record = coefficients->GetCoefficientRecord();
  Require(std::isfinite(record[0]) && record[0] > 0.0, "a finite A above 0", NumberText(record[0]));
  for (const double coefficient : record) {
    Require(std::isfinite(coefficient), "finite coefficients", NumberText(coefficient));
  }
}

void CurrentCoefficientsAreACopy(Subject& subject) {
  const CoefficientRecord before = CurrentCoefficients(subject)->GetCoefficientRecord();
  ShiftedCoefficients(subject);
  const CoefficientRecord after = CurrentCoefficients(subject)->GetCoefficientRecord();
  Require(after[0] == before[0] && after[1] == before[1],
          "A of " + NumberText(before[0]) + " in a new copy, whatever was fitted in the last one",
          NumberText(after[0]));
}

// Runs `work` with other coefficients in force.
template <class Work>
void WithShiftedCoefficientsInForce(Subject& subject, Work&& work) {
  AcqController& controller = *subject.parts.acq_controller;
  const auto as_found = CurrentCoefficients(subject);
  const auto shifted = ShiftedCoefficients(subject);
  ThenPutBack(
      [&] {
        controller.SetCalibCoefficients(shifted);
        work(shifted->GetCoefficientRecord());
      },
      [&] { controller.SetCalibCoefficients(as_found); });
}

void RequireA(Subject& subject, double a_per_ns) {
  RequireNear("A", CurrentCoefficients(subject)->GetCoefficientRecord()[0], a_per_ns,
              a_per_ns * kRelativeRounding);
}

void RequireAAndT0(Subject& subject, double a_per_ns, double t0_ns) {
  RequireA(subject, a_per_ns);
  RequireNear("t0", CurrentCoefficients(subject)->GetCoefficientRecord()[1], t0_ns, kRoundingNs);
}

void CoefficientsArePutInForce(Subject& subject) {
  WithShiftedCoefficientsInForce(subject, [&](const CoefficientRecord& shifted) {
    RequireAAndT0(subject, shifted[0], shifted[1]);
  });
}

void RequireCurrentA(Subject& subject, double a_per_ns) {
  RequireNear("GetCurrentA", subject.parts.acq_controller->GetCurrentA(), a_per_ns,
              a_per_ns * kRelativeRounding);
}

void CurrentAIsThatInForce(Subject& subject) {
  RequireCurrentA(subject, CurrentCoefficients(subject)->GetCoefficientRecord()[0]);
  WithShiftedCoefficientsInForce(
      subject, [&](const CoefficientRecord& shifted) { RequireCurrentA(subject, shifted[0]); });
}

struct StartingValues {
  double a_per_ns = 0.0;
  double t0_ns = 0.0;
};

// Runs `work` with starting values that differ from the coefficients in force.
template <class Work>
void WithStartingValues(Subject& subject, Work&& work) {
  constexpr double kPerUs = 1000.0;
  AcqController& controller = *subject.parts.acq_controller;
  const auto as_found = CurrentCoefficients(subject);
  const CoefficientRecord record = as_found->GetCoefficientRecord();
  const StartingValues start{record[0] * (1.0 - 1e-4), record[1] - 1.0};
  ThenPutBack(
      [&] {
        controller.SetLikelyAAndT0(start.a_per_ns * kPerUs, start.t0_ns / kPerUs);
        work(start);
      },
      [&] { controller.SetCalibCoefficients(as_found); });
}

void StartingValuesSeedTheNextCopy(Subject& subject) {
  WithStartingValues(subject, [&](const StartingValues& start) {
    RequireAAndT0(subject, start.a_per_ns, start.t0_ns);
  });
}

void StartingValuesLeaveCurrentA(Subject& subject) {
  const double before = subject.parts.acq_controller->GetCurrentA();
  WithStartingValues(subject, [&](const StartingValues&) { RequireCurrentA(subject, before); });
}

void NewCoefficientsEndTheStartingValues(Subject& subject) {
  const auto shifted = ShiftedCoefficients(subject);
  const CoefficientRecord record = shifted->GetCoefficientRecord();
  WithStartingValues(subject, [&](const StartingValues&) {
    subject.parts.acq_controller->SetCalibCoefficients(shifted);
    RequireA(subject, record[0]);
  });
}

void DefaultCoefficientsAreUsable(Subject& subject) {
  const auto defaults = subject.parts.acq_controller->GetDefaultCalibCoefficients();
  if (!defaults) throw NotApplicable("the instrument has no default coefficients");
  const double a_per_ns = defaults->GetCoefficientRecord()[0];
  Require(std::isfinite(a_per_ns) && a_per_ns > 0.0, "a finite A above 0", NumberText(a_per_ns));
}

using TwoMasses = std::array<double, 2>;

constexpr std::array kThreeSpectra{TwoMasses{10.0, 5.0}, TwoMasses{12.0, 5.0},
                                   TwoMasses{17.0, 5.0}};

ColumnStatistics StatisticsOf(Subject& subject, std::span<const TwoMasses> spectra) {
  BoundedArray2D<double> table({0, static_cast<std::int32_t>(spectra.size()) - 1}, {0, 1});
  std::int32_t row = 0;
  for (const TwoMasses& spectrum : spectra) {
    table(row, 0) = spectrum[0];
    table(row, 1) = spectrum[1];
    ++row;
  }
  return subject.parts.acq_controller->GetColumnStatistics(table);
}

void StatisticsAreOfColumns(Subject& subject) {
  const auto averages = StatisticsOf(subject, kThreeSpectra).averages;
  Require(averages.LBound() == 0 && averages.UBound() == 1, "an average per mass, from index 0",
          std::to_string(averages.size()) + " averages from index " +
              std::to_string(averages.LBound()));
  RequireNear("average of 10, 12 and 17", averages(0), 13.0, kRelativeRounding);
  RequireNear("average of 5, 5 and 5", averages(1), 5.0, kRelativeRounding);
}

void DeviationIsThatOfASample(Subject& subject) {
  const auto deviations = StatisticsOf(subject, kThreeSpectra).standard_deviations;
  RequireNear("deviation (n - 1) of 10, 12 and 17", deviations(0), std::sqrt(13.0),
              kRelativeRounding);
  RequireNear("deviation of 5, 5 and 5", deviations(1), 0.0, kRelativeRounding);
}

void DeviationOfOneIsZero(Subject& subject) {
  const auto deviations =
      StatisticsOf(subject, std::span(kThreeSpectra).first(1)).standard_deviations;
  RequireNear("deviation of a single spectrum", deviations(0), 0.0, 0.0);
}

void FreshControllerReadsSetpoints(Subject& subject) {
  const Variant expected = Given("SetpointTable.has-the-setpoints-of-every-calibration", [&] {
    return SetpointsOf(subject)->GetSetpoint(setpoint::kGainChannelSelect);
  });
  const Variant found = FreshController(subject)->ReadSetpoint(setpoint::kGainChannelSelect);
  Require(ToText(found) == ToText(expected), "setpoint 149 at " + ToText(expected), ToText(found));
}

constexpr std::int32_t kNoSuchId = -1;

void UnknownSetpointIsAnError(Subject& subject) {
  const auto read = [&] { subject.parts.acq_controller->ReadSetpoint(kNoSuchId); };
  Require(ErrorRaisedBy(read).has_value(), "an error for setpoint -1", "a value");
}

void ErrorsCarryNumberAndText(Subject& subject) {
  RequireNumberAndText(
      ErrorRaisedBy([&] { subject.parts.acq_controller->ReadSetpoint(kNoSuchId); }));
}

void CalibrantMassesAreUsable(Subject& subject) {
  const std::int32_t selection = Given("SetpointTable.has-the-setpoints-of-every-calibration", [&] {
    return ToInt32(SetpointsOf(subject)->GetSetpoint(setpoint::kCalibrantSelection));
  });
  const BoundedArray<double> masses = subject.parts.acq_controller->GetCalibrantMasses(
      selection, subject.parts.data_dictionary->GetModeName(),
      subject.parts.acq_controller->GetConfigurationName());
  Require(masses.size() != 0, "at least one mass", "none");
  double last = 0.0;
  for (const double mass : masses) {
    Require(std::isfinite(mass) && mass > last, "finite masses above 0, in ascending order",
            NumberText(mass) + " behind " + NumberText(last));
    last = mass;
  }
}

constexpr std::array kChecks{
    Check{
        "AcqController", "initializes",
        "Each new controller is initialised by two operations, each given 0; an error there means "
        "that no calibrator can be created.",
        Initializes},
    Check{"AcqController", "prepares-setpoint-access",
          "Two preparations precede every single access to a setpoint, hundreds of times in a "
          "calibration: they may be repeated at will.",
          PreparesSetpointAccess},
    Check{
        "AcqController", "no-abort-unless-asked",
        "Every wait polls for an abort, and anything but 0 ends the calibration: it stays 0 until "
        "the user asks.",
        NoAbortUnlessAsked},
    Check{"AcqController", "abort-is-seen",
          "Once the user asked for an abort, polling answers other than 0: nothing else stops a "
          "calibration.",
          AbortIsSeen},
    Check{"AcqController", "scale-factor-is-positive",
          "The limits of the abundance band are multiplied by it: a finite number above 0.",
          ScaleFactorIsPositive},
    Check{"AcqController", "current-coefficients-are-usable",
          "Peaks are sought where the coefficients in force expect them: an object with finite "
          "coefficients and A, in square-root mass per ns, above 0.",
          CurrentCoefficientsAreUsable},
    Check{
        "AcqController", "current-coefficients-are-a-copy",
        "A calibration fits in the object that it is given; until the result has passed its check "
        "the instrument works with the old coefficients.",
        CurrentCoefficientsAreACopy},
    Check{"AcqController", "coefficients-are-put-in-force",
          "What a calibration puts in force is what the instrument has from then on, to the last "
          "digits of A and t0.",
          CoefficientsArePutInForce},
    Check{
        "AcqController", "current-a-is-that-in-force",
        "New coefficients are judged by how far their A is from that in force, a few hundred ppm: "
        "GetCurrentA is the first of its coefficients, per ns.",
        CurrentAIsThatInForce},
    Check{"AcqController", "starting-values-seed-the-next-copy",
          "The estimated A (per us) and t0 (in us) say where the fit that follows begins: the next "
          "copy of the coefficients has them, per ns and in ns.",
          StartingValuesSeedTheNextCopy},
    Check{"AcqController", "starting-values-leave-current-a",
          "The estimate is no calibration yet: the A that the result is judged by stays that in "
          "force.",
          StartingValuesLeaveCurrentA},
    Check{"AcqController", "new-coefficients-end-the-starting-values",
          "Starting values belong to one calibration: once coefficients are put in force, these "
          "are what the next copy holds.",
          NewCoefficientsEndTheStartingValues},
    Check{"AcqController", "default-coefficients-are-usable",
          "After a calibration that failed badly the defaults are put in force: where there are "
          "any, their A is a finite number above 0.",
          DefaultCoefficientsAreUsable},
    Check{"AcqController", "statistics-are-of-columns",
          "The calibration log lists an average per mass over the spectra: over the first "
          "dimension, one for each index of the second, counted from 0.",
          StatisticsAreOfColumns},
    Check{"AcqController", "deviation-is-that-of-a-sample",
          "The deviations in the log describe the scatter of few spectra: the sum of squares is "
          "divided by n - 1.",
          DeviationIsThatOfASample},
    Check{"AcqController", "deviation-of-one-spectrum-is-zero",
          "A calibration from a single spectrum writes its log like any other: the deviation is 0, "
          "neither an error nor NaN.",
          DeviationOfOneIsZero},
    Check{"AcqController", "fresh-controller-reads-setpoints",
          "The head of the calibration log shows setpoint 149 as a new controller reads it, before "
          "that is initialised: the same value as in the table.",
          FreshControllerReadsSetpoints},
    Check{"AcqController", "unknown-setpoint-is-an-error",
          "An id that the instrument does not have is an error here as in the setpoint table.",
          UnknownSetpointIsAnError},
    Check{"AcqController", "errors-carry-number-and-text", kErrorsReachTheUser,
          ErrorsCarryNumberAndText},
    Check{"AcqController", "calibrant-masses-are-usable",
          "Where the caller names no masses the instrument's own are taken, for the value of "
          "setpoint 117, the mode and the configuration: finite, above 0, ascending.",
          CalibrantMassesAreUsable},
};

}  // namespace

std::span<const Check> AcqControllerChecks() {
  return kChecks;
}

}  // namespace tof::conformance
