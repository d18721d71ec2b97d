#include <array>
#include <cmath>

#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/calibrant_peaks.h"
#include "instruments/conformance/checks.h"

namespace tof::conformance {
namespace {

constexpr float kLowest = 20.0F;
constexpr float kHighest = 160.0F;

// What the firmware finds for a calibrant, asked for with the arguments that the calibrator passes.
float FoundByFirmware(Subject& subject, const CalibrantPeak& peak) {
  constexpr double kHalfWindowNs = 15.0;
  const auto library = Given("InstrumentFactory.gives-the-shared-objects", [&] {
    auto firmware = subject.parts.factory->GetFirmwareLibrary();
    Need(firmware);
    return firmware;
  });
  const double time_ns = Given("MassCalCoefficients.time-and-mass-are-inverse", [&] {
    return CurrentCoefficients(subject)->MassToTime(peak.row1.time);
  });
  const Band band = BandOf(subject);
  const double speed_up = CalibrationSetting(subject.parts, "AIC_SearchSpeedUpFactor");
  const auto single = [](double value) { return static_cast<float>(value); };
  float found = 0.0F;
  SearchIfThereIsOne([&] {
    found = library->BinarySearchForTargetAb(
        22, single(band.minimum), single(band.maximum), single(speed_up), 0.1F, kLowest, kHighest,
        1, single(time_ns - kHalfWindowNs), single(time_ns + kHalfWindowNs));
  });
  return found;
}

void SearchStaysWithinItsLimits(Subject& subject) {
  const CalibrantPeak peak = StrongestCalibrant(subject);
  MovingTheRfVoltage(subject, [&](std::int32_t) {
    const double volts = FoundByFirmware(subject, peak);
    Require(volts >= kLowest && volts <= kHighest, "a value from 20 to 160", NumberText(volts));
  });
}

void SearchEndsInTheBand(Subject& subject) {
  const CalibrantPeak peak = StrongestCalibrant(subject);
  RequireAboveTheBand(subject, peak);
  MovingTheRfVoltage(subject, [&](std::int32_t rf_id) {
    const double volts = FoundByFirmware(subject, peak);
    if (!(volts >= kLowest && volts <= kHighest)) {
      throw NotApplicable("FirmwareLibrary.search-stays-within-its-limits has to pass first");
    }
    SetpointsOf(subject)->SetSetpoint(rf_id, ValueType::kDouble, Variant(volts));
    Settle(subject);
    RequireEndInTheBand(subject, peak, volts);
  });
}

constexpr std::array kChecks{
    Check{"FirmwareLibrary", "search-stays-within-its-limits",
          "The value found is written to the RF setpoint as it is: it lies between the limits that "
          "were passed. An instrument without a search raises error 445.",
          SearchStaysWithinItsLimits},
    Check{"FirmwareLibrary", "search-ends-in-the-band",
          "At the value found, the peak in the window of flight times is in the abundance band, or "
          "the value is the lower limit.",
          SearchEndsInTheBand},
};

}  // namespace

std::span<const Check> FirmwareLibraryChecks() {
  return kChecks;
}

}  // namespace tof::conformance
