// Whole calibrations with the registered classes alone: they are those of the component that is
// linked in, down to the bytes of the log files.

#include <iostream>
#include <regex>

#include "component/automation/convert.h"
#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "hosts/com/standin/hosted_instrument.h"
#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "instruments/description/overrides.h"
#include "tests/com/registered/registered_world.h"

namespace tof::com {
namespace {

namespace fs = std::filesystem;

// How the abundance is brought into the band.
struct Way {
  const char* name;
  bool suppress_aic;
  std::vector<const char*> settings;
  std::vector<const char*> flags;
};

void PrintTo(const Way& way, std::ostream* out) {
  *out << way.name;
}

const std::vector<Way> kWays = {
    {"Traditional", true, {}, {}},
    {"Ramp", false, {"Calibration/AIC_RF_Step=4"}, {}},
    {"FirmwareSearch", false, {"Calibration/AIC_SetpointToUse=83"}, {"AIC_RunFastVersion=Yes"}},
    {"ParserSearch", false, {"Calibration/AIC_SetpointToUse=83"}, {}},
};

struct StatusNumbers : StatusEvents {
  std::vector<std::pair<LONG, std::string>> events;
  void evtNewStatus(std::int32_t number, const std::string& message) override {
    events.emplace_back(number, message);
  }
};

// The component on the same instrument, without COM in between. Its own clock stands still, as the
// instrument does not see its waits.
CalibrationResult CalibrateNatively(const InstrumentChoice& choice,
                                    const CalibrationRequest& request) {
  const ModuleStateScope module_state;
  HostedInstrument hosted(choice);
  hosted.MakeLogFolder();
  native::VirtualTimeHost host(std::cerr, std::make_shared<native::VirtualClock>(), 1);
  StatusNumbers status;
  TofCalibrator calibrator(hosted.Instrument(), host, status);
  std::int16_t spectra = request.spectra;
  bool suppress = request.suppress_aic;
  Variant times;
  const auto coefficients = calibrator.calibrateTOFMassAxis(
      spectra, Variant::DoubleArray(request.masses), times, suppress);
  CalibrationResult result;
  result.events = status.events;
  if (coefficients == nullptr) return result;
  const BoundedArray<double> numbers = MassesFromCaller(times);
  result.times_ns = {numbers.begin(), numbers.end()};
  result.coefficients = coefficients->GetCoefficientRecord();
  return result;
}

// Dates and times are those of the runs.
FileContents WithoutTimes(const FileContents& files) {
  static const std::regex kDateAndTime(
      R"(20\d{6}_\d{6}|\b(20\d{6}, \d{6}|20\d{6} \d\d:\d\d:\d\d|\d+/\d+/\d+ \d+:\d\d:\d\d( [AP]M)?))");
  FileContents masked;
  for (const auto& [name, content] : files) {
    masked[std::regex_replace(name, kDateAndTime, "TIME")] =
        std::regex_replace(content, kDateAndTime, "TIME");
  }
  return masked;
}

class RegisteredCalibration : public RegisteredWorld, public ::testing::WithParamInterface<Way> {};

TEST_P(RegisteredCalibration, IsThatOfTheComponentItself) {
  InstrumentChoice choice;
  choice.seed = 7;
  choice.description.base_folder = (base_folder / "native").string();
  fs::create_directories(base_folder / "native");
  for (const std::string& setting : kNoWaits) {
    description::OverrideSetting(choice.description, setting);
  }
  control->PutProperty("Seed", OwnedVariant::Of(std::int32_t{7}));
  for (const char* setting : GetParam().settings) {
    control->Call("OverrideSetting", setting);
    description::OverrideSetting(choice.description, setting);
  }
  for (const char* flag : GetParam().flags) {
    control->Call("OverrideFlag", flag);
    description::OverrideFlag(choice.description, flag);
  }
  const CalibrationRequest request{.masses = Masses(), .suppress_aic = GetParam().suppress_aic};

  const CalibrationResult through_com = Calibrate(request);
  const CalibrationResult native = CalibrateNatively(choice, request);

  EXPECT_EQ(through_com.events, native.events);
  ASSERT_TRUE(through_com.coefficients) << ::testing::PrintToString(through_com.events);
  EXPECT_EQ(*through_com.coefficients, *native.coefficients);
  EXPECT_EQ(through_com.times_ns, native.times_ns);
  EXPECT_EQ(Calls("AcqController.EndAIC") > 0, !GetParam().suppress_aic);
  EXPECT_EQ(CanUnloadCalibrator(), S_OK);  // which closes its log
  const FileContents written = WithoutTimes(FilesIn(base_folder / "Logfiles"));
  EXPECT_FALSE(written.empty());
  EXPECT_EQ(written, WithoutTimes(FilesIn(base_folder / "native" / "Logfiles")));
}

INSTANTIATE_TEST_SUITE_P(Ways, RegisteredCalibration, ::testing::ValuesIn(kWays),
                         [](const auto& way) { return std::string(way.param.name); });

class RegisteredRecording : public RegisteredWorld {};

TEST_F(RegisteredRecording, IsCalibratedFromItsFiles) {
  const fs::path data = fs::path(TOF_SHARED_DATA) / "ladder";
  if (!fs::exists(data)) GTEST_SKIP() << "the shared spectra are not on this machine";
  LoadExample("ladder", data);
  const CalibrationRequest request{.masses = Masses(), .spectra = 1};
  EXPECT_EQ(request.masses.size(), 29U);
  const CalibrationResult result = Calibrate(request);
  EXPECT_TRUE(result.coefficients) << ::testing::PrintToString(result.events);
  EXPECT_EQ(result.times_ns.size(), 29U);
}

}  // namespace
}  // namespace tof::com
