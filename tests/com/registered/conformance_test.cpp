// The registered instrument does what the calibrator relies on.

#include <iostream>

#include "hosts/com/calibrator/windows_host.h"
#include "hosts/com/instrument_client/instrument_factory.h"
#include "instruments/conformance/table.h"
#include "tests/com/registered/registered_world.h"

namespace tof::com {
namespace {

class RegisteredConformance : public RegisteredWorld {
 protected:
  std::vector<conformance::CheckResult> RunChecks() {
    RegisteredInstrument instrument;
    WindowsHost host;
    return conformance::RunChecks({.factory = instrument,
                                   .host = host,
                                   .abort = {.ask = [&] { control->Call("RequestAbort"); },
                                             .withdraw = [&] { control->Call("WithdrawAbort"); }}});
  }
};

TEST_F(RegisteredConformance, OfTheVirtualInstrumentIsComplete) {
  control->Call("OverrideFlag", "Enable1700mzTune=Yes");  // so that every check applies
  const auto results = RunChecks();
  EXPECT_EQ(results.size(), conformance::AllChecks().size());
  EXPECT_EQ(NumberOf(conformance::Outcome::kPass, results), results.size())
      << TableOf("virtual TOF", results);
}

TEST_F(RegisteredConformance, OfARecordedInstrumentLacksOnlyWhatItHasNot) {
  const std::filesystem::path data = std::filesystem::path(TOF_SHARED_DATA) / "ladder";
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "the shared spectra are not on this machine";
  LoadExample("ladder", data);
  const auto results = RunChecks();
  EXPECT_EQ(NumberOf(conformance::Outcome::kFail, results), 0U) << TableOf("ladder", results);
  EXPECT_GT(NumberOf(conformance::Outcome::kPass, results), results.size() / 2);
}

}  // namespace
}  // namespace tof::com
