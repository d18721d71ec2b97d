#include <array>

#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

void FreezesAndGoesLive(Subject& subject) {
  const auto display = subject.parts.data_dictionary->GetConfigObject();
  if (!display) throw NotApplicable("the instrument has no spectrum display");
  ThenPutBack([&] { display->SetDisplayUpdate(false); }, [&] { display->SetDisplayUpdate(true); });
}

constexpr std::array kChecks{
    Check{"SpectrumDisplay", "freezes-and-goes-live",
          "A calibration may freeze the display of spectra while it moves voltages, and sets it "
          "live again at its end: neither is an error.",
          FreezesAndGoesLive},
};

}  // namespace

std::span<const Check> SpectrumDisplayChecks() {
  return kChecks;
}

}  // namespace tof::conformance
