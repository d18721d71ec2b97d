// How long the instrument of a process lives, and for whom.

#include <thread>

#include "component/automation/convert.h"
#include "hosts/com/automation/variant_conversion.h"
#include "tests/com/registered/registered_world.h"

namespace tof::com {
namespace {

class InstrumentLifetime : public RegisteredWorld {};

TEST_F(InstrumentLifetime, EndsWhenTheDllMayGoAndBeginsAnew) {
  control->Call("OverrideSetpoint", "83=44");
  EXPECT_EQ(CanUnloadInstrument(), S_FALSE);
  control.reset();
  EXPECT_EQ(CanUnloadInstrument(), S_OK);
  DispatchObject dictionary = CreateDispatchObject("vorninstrument.DataDictionary");
  DispatchObject table(ObjectIn(dictionary.Call("GetSetpointTable").get()), "the setpoint table");
  EXPECT_EQ(ToDouble(FromVariant(table.Call("GetSetpoint", 83).get())), 75.0);
}

TEST_F(InstrumentLifetime, LastsWithoutObjectsUntilThen) {
  control->Call("OverrideSetpoint", "83=44");
  control.reset();
  DispatchObject dictionary = CreateDispatchObject("vorninstrument.DataDictionary");
  DispatchObject table(ObjectIn(dictionary.Call("GetSetpointTable").get()), "the setpoint table");
  EXPECT_EQ(ToDouble(FromVariant(table.Call("GetSetpoint", 83).get())), 44.0);
}

TEST_F(InstrumentLifetime, AnObjectThatIsLeftWorksWithoutTheOthers) {
  DispatchObject files = CreateDispatchObject("vorninstrument.CalibLogFiles");
  control->Call("LoadDescription", "", "");
  control.reset();
  // It writes through the host of the instrument that it was made for.
  DispatchObject stream(ObjectIn(files.Call("OpenLogFile", "AIC", "header", "TXT").get()),
                        "the log file");
  stream.Call("Close");
  EXPECT_EQ(FilesIn(base_folder / "Logfiles").size(), 1U);
}

TEST_F(InstrumentLifetime, OnAnotherThreadIsRefusedWhileItIsInUse) {
  AutomationError refusal(0, "");
  const auto create = [&] {
    const Apartment other;
    try {
      const DispatchObject created = CreateDispatchObject("vorninstrument.DataDictionary");
      refusal = {0, "created"};
    } catch (const AutomationError& error) {
      refusal = error;
    }
  };
  std::thread(create).join();
  EXPECT_EQ(refusal.number(), 70);
  EXPECT_THAT(refusal.description(), ::testing::HasSubstr("in use on another thread"));
  control.reset();
  std::thread(create).join();
  EXPECT_EQ(refusal.description(), "created");
}

TEST_F(InstrumentLifetime, TwoCalibratorsWorkOnTheOneInstrument) {
  const auto first = NewCalibrator();
  const auto second = NewCalibrator();
  const CalibrationRequest request{.masses = Masses(), .spectra = 2, .suppress_aic = true};
  EXPECT_TRUE(Calibrate(*first.get(), request).coefficients);
  const LONG spectra = Number("Spectra");
  EXPECT_TRUE(Calibrate(*second.get(), request).coefficients);
  EXPECT_EQ(Number("Spectra"), 2 * spectra);
}

}  // namespace
}  // namespace tof::com
