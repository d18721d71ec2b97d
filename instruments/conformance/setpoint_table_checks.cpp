#include <array>
#include <cmath>

#include "component/automation/convert.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

constexpr std::int32_t kNoSuchId = -1;

struct TypedSetpoint {
  std::int32_t id;
  ValueType type;
};

// As the calibrator writes and reads them.
constexpr std::array kOfEveryCalibration{
    TypedSetpoint{setpoint::kSampleRate, ValueType::kInt16},
    TypedSetpoint{setpoint::kScintillator, ValueType::kDouble},
    TypedSetpoint{setpoint::k128, ValueType::kInt16},
    TypedSetpoint{setpoint::kGainChannelSelect, ValueType::kInt16},
    TypedSetpoint{setpoint::kHighResEnabled, ValueType::kBoolean},
};
constexpr std::array kReadOnly{
    TypedSetpoint{setpoint::kCalibrantSelection, ValueType::kInt32},
    TypedSetpoint{setpoint::k119, ValueType::kInt32},
    TypedSetpoint{setpoint::kFpsMode, ValueType::kBoolean},
};
constexpr std::array kOfSpecialTunes{
    TypedSetpoint{setpoint::kHighPressureRf, ValueType::kDouble},
    TypedSetpoint{setpoint::kLowPressureRf, ValueType::kDouble},
    TypedSetpoint{setpoint::kFragmentor, ValueType::kDouble},
    TypedSetpoint{setpoint::kCollisionCellVoltage, ValueType::kDouble},
};

Variant Converted(const Variant& value, ValueType type) {
  switch (type) {
    case ValueType::kInt16:
      return ToInt16(value);
    case ValueType::kInt32:
      return ToInt32(value);
    case ValueType::kDouble:
      return ToDouble(value);
    case ValueType::kBoolean:
      return ToBool(value);
  }
  return value;
}

void RequireReadable(Subject& subject, const TypedSetpoint& setpoint) {
  const auto table = SetpointsOf(subject);
  const auto error =
      ErrorRaisedBy([&] { Converted(table->GetSetpoint(setpoint.id), setpoint.type); });
  Require(!error, "setpoint " + std::to_string(setpoint.id) + " with a value of its type",
          error ? error->text : std::string());
}

void HasTheSetpointsOfEveryCalibration(Subject& subject) {
  for (const TypedSetpoint& setpoint : kOfEveryCalibration) RequireReadable(subject, setpoint);
  for (const TypedSetpoint& setpoint : kReadOnly) RequireReadable(subject, setpoint);
}

void RequireWriteBack(Subject& subject, const TypedSetpoint& setpoint) {
  const Variant as_found = Given("SetpointTable.has-the-setpoints-of-every-calibration", [&] {
    return Converted(SetpointsOf(subject)->GetSetpoint(setpoint.id), setpoint.type);
  });
  SetpointsOf(subject)->SetSetpoint(setpoint.id, setpoint.type, as_found);
  const Variant after = Converted(SetpointsOf(subject)->GetSetpoint(setpoint.id), setpoint.type);
  Require(after == as_found,
          "setpoint " + std::to_string(setpoint.id) + " still at " + ToText(as_found) +
              " when that is written to it",
          ToText(after));
}

void SavedSetpointsAreWrittenBack(Subject& subject) {
  for (const TypedSetpoint& setpoint : kOfEveryCalibration) RequireWriteBack(subject, setpoint);
}

void TuneSetpointsAreWrittenBack(Subject& subject) {
  if (!FlagIs(subject.parts, "Enable1700mzTune", "Yes")) {
    throw NotApplicable("the flag Enable1700mzTune is not \"Yes\"");
  }
  for (const TypedSetpoint& setpoint : kOfSpecialTunes) RequireReadable(subject, setpoint);
  for (const TypedSetpoint& setpoint : kOfSpecialTunes) RequireWriteBack(subject, setpoint);
}

void RfVoltageIsReadBack(Subject& subject) {
  constexpr double kHalfASearchStep = 0.05;
  const RfRange range = RfRangeOf(subject);
  MovingTheRfVoltage(subject, [&](std::int32_t rf_id) {
    for (const double volts : {range.low, (range.low + range.high) / 2.0, range.high}) {
      SetpointsOf(subject)->SetSetpoint(rf_id, ValueType::kDouble, Variant(volts));
      RequireNear("setpoint " + std::to_string(rf_id),
                  ToDouble(SetpointsOf(subject)->GetSetpoint(rf_id)), volts, kHalfASearchStep);
    }
  });
}

void CurrentRfValueIsANumber(Subject& subject) {
  const std::int32_t rf_id = RfSetpointId(subject);
  const double volts = ToDouble(SetpointsOf(subject)->GetCurrentValue(rf_id));
  Require(std::isfinite(volts), "a finite value", "none");
}

void UnknownIdCannotBeRead(Subject& subject) {
  const auto table = SetpointsOf(subject);
  Require(ErrorRaisedBy([&] { table->GetSetpoint(kNoSuchId); }).has_value(),
          "an error for setpoint -1", "a value");
}

void UnknownIdCannotBeWritten(Subject& subject) {
  const auto table = SetpointsOf(subject);
  const auto write = [&] { table->SetSetpoint(kNoSuchId, ValueType::kDouble, Variant(0.0)); };
  Require(ErrorRaisedBy(write).has_value(), "an error for setpoint -1", "none");
}

void ErrorsCarryNumberAndText(Subject& subject) {
  const auto table = SetpointsOf(subject);
  RequireNumberAndText(ErrorRaisedBy([&] { table->GetSetpoint(kNoSuchId); }));
}

constexpr std::array kChecks{
    Check{"SetpointTable", "has-the-setpoints-of-every-calibration",
          "Each calibration reads the setpoints 18, 69, 117, 119, 128, 149, 150 and 162, and "
          "converts them to the type that they are written with.",
          HasTheSetpointsOfEveryCalibration},
    Check{"SetpointTable", "saved-setpoints-are-written-back",
          "At its end a calibration writes what it read from 18, 128, 149 and 150 at its start: "
          "that leaves the instrument as it was.",
          SavedSetpointsAreWrittenBack},
    Check{"SetpointTable", "tune-setpoints-are-written-back",
          "With the special tune switched on, 85, 101, 190 and 191 are changed for the calibration "
          "and get back what was read from them.",
          TuneSetpointsAreWrittenBack},
    Check{"SetpointTable", "rf-voltage-is-read-back",
          "A search for a voltage reads the RF setpoint back and goes on from there in steps of "
          "0.1 V: what is read is what was written, to half a step.",
          RfVoltageIsReadBack},
    Check{"SetpointTable", "current-rf-value-is-a-number",
          "To refresh the display, the present value of the RF setpoint is read and written to it "
          "again: a number.",
          CurrentRfValueIsANumber},
    Check{"SetpointTable", "unknown-id-cannot-be-read",
          "An id that the instrument does not have is an error: any value in its place would be "
          "taken for the instrument's state.",
          UnknownIdCannotBeRead},
    Check{"SetpointTable", "unknown-id-cannot-be-written",
          "Writing to an id that the instrument does not have is an error: a search would else "
          "turn a knob that is not there and believe in its result.",
          UnknownIdCannotBeWritten},
    Check{"SetpointTable", "errors-carry-number-and-text", kErrorsReachTheUser,
          ErrorsCarryNumberAndText},
};

}  // namespace

std::span<const Check> SetpointTableChecks() {
  return kChecks;
}

}  // namespace tof::conformance
