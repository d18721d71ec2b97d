#include "component/acquisition/first_spectrum_survey.h"

#include "tests/component/error_number_of.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::SettingRead;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

const std::string kName = "UseFirstSpectrumToFindTimesAndVoltages";

class FirstSpectrumSurvey : public fakes::AicFixture {
 protected:
  void Run(std::int32_t id = 84) {
    const RfVoltage rf = Rf(id);
    UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data}, range, 200000, window);
  }

  RfRange range{.low = 20.0, .high = 22.0, .step = 2.0};
  double window = 0.75;
};

TEST_F(FirstSpectrumSurvey, ReadsSetpointFlagAndTheUnusedSettingsBeforeItChoosesItsWay) {
  window = -1.0;
  Run();
  const Calls begin = InOrder(
      {fakes::SetpointRead(84), SettingRead("PeakHandling/PeakFindWindowInPercentT"),
       FlagRead("EnableAICAltSPPlugValues"), SettingRead("Calibration/AIC_LowQuadAMUStartValue"),
       SettingRead("Calibration/AIC_LowQuadAMUStopValue")});
  const Calls calls = CallsMade();
  ASSERT_GE(calls.size(), begin.size());
  EXPECT_THAT(Calls(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(begin.size())),
              ElementsAreArray(begin));
}

TEST_F(FirstSpectrumSurvey, AnnouncesItselfAndTracesTheWindow) {
  Run();
  EXPECT_EQ(host.trace->lines.front(), "Entry " + kName + " 9");
  EXPECT_EQ(host.trace->lines[1], kName + " 9: dPeakFindTimeWindow = 0.75");
  EXPECT_EQ(host.trace->lines.back(), "Exit " + kName + " 9");
}

TEST_F(FirstSpectrumSurvey, ReplacesAWindowOfMinusOneInTheCallersVariable) {
  window = -1.0;
  Run();
  EXPECT_EQ(window, 0.5);
  EXPECT_EQ(TextsOf(kName).front(), "dPeakFindTimeWindow = 0.5");
  EXPECT_THAT(CallsMade(), Contains(fakes::SpectrumTaken("0.5").front()));
}

TEST_F(FirstSpectrumSurvey, UsesEveryOtherWindowUnchanged) {
  for (const double other : {-1.5, 0.0, 3.0}) {
    window = other;
    journal.Clear();
    Run();
    EXPECT_EQ(window, other);
    EXPECT_EQ(NumberOf("CalibSettings.GetValue(PeakHandling"), 0U);
  }
}

TEST_F(FirstSpectrumSurvey, SearchesPerMassAtSetpoint83Alone) {
  for (const std::int32_t id : {82, 84, 0, -83}) {
    instrument.setpoints[id] = 75.0;
    host.trace->Forget();
    Run(id);
    EXPECT_THAT(TextsOf(kName), Contains("Seeking target values...")) << id;
    EXPECT_EQ(NumberOf("AcqController.GetCurrentMassCalObject"), 0U) << id;
  }
  host.trace->Forget();
  Run(83);
  EXPECT_THAT(TextsOf(kName), Contains("varCalibrantMasses(massIdx) = 100"));
  EXPECT_THAT(TextsOf(kName), ::testing::Not(Contains("Seeking target values...")));
}

TEST_F(FirstSpectrumSurvey, TracesAndPassesOnEveryFailureOfItsOwn) {
  std::int32_t raised = 0;
  instrument.flags["EnableAICAltSPPlugValues"] = "Yes";
  data.peaks.ReDim(0, 9);
  fakes::FailEachCall(
      journal, [&] { window = -1.0; }, [&] { raised = ErrorNumberOf([&] { Run(); }); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(raised, fakes::kInjectedNumber);
        EXPECT_EQ(LastTrace(), "error[4711] in " + kName + "(): Injected fault");
      });
}

// Plug values 101, 102, ... for the first ten masses.
class PlugValues : public FirstSpectrumSurvey {
 protected:
  PlugValues() {
    instrument.flags["EnableAICAltSPPlugValues"] = "Yes";
    for (int i = 1; i <= 10; ++i) {
      instrument.settings["Calibration/AICAltSPPlugValueForMass" + std::to_string(i)] = 100.0 + i;
    }
  }
  // Every record as an earlier stage left it.
  void Masses(std::int32_t number) {
    data.expected_masses = Variant::DoubleArray(0, number - 1);
    SizeFor(1);
    for (CalibMassPeakData& record : data.peaks) {
      record.Voltage = 7.0;
      record.Abundance = 7;
    }
    journal.Clear();
  }
  void ExpectPlugged(std::int32_t plugged) {
    for (std::int32_t m = 0; m <= data.peaks.UBound(); ++m) {
      EXPECT_EQ(data.peaks(m).Voltage, m < plugged ? 101.0 + m : 7.0) << "mass " << m;
      EXPECT_EQ(data.peaks(m).Abundance, m < plugged ? 200000 : 7) << "mass " << m;
    }
  }
};

TEST_F(PlugValues, AreReadInOrderAndNothingElseIsDone) {
  Masses(6);
  Run();
  Calls expected = InOrder({fakes::SetpointRead(84), FlagRead("EnableAICAltSPPlugValues")});
  for (int i = 1; i <= 6; ++i) {
    expected.push_back("CalibSettings.GetValue(Calibration/AICAltSPPlugValueForMass" +
                       std::to_string(i) + ",0)");
  }
  EXPECT_THAT(CallsMade(), ElementsAreArray(expected));
  EXPECT_THAT(TextsOf(kName), ElementsAre("dPeakFindTimeWindow = 0.75"));
  EXPECT_EQ(instrument.spectra_taken, 0);
}

TEST_F(PlugValues, AreSixForSixMassesAndTenForTenAndMore) {
  for (const std::int32_t number : {6, 10, 11, 30}) {
    SCOPED_TRACE(number);
    Masses(number);
    Run();
    ExpectPlugged(number == 6 ? 6 : 10);
  }
}

TEST_F(PlugValues, EndAtTheFirstMassThatIsNotThere) {
  for (const std::int32_t number : {1, 5, 7, 8, 9}) {
    SCOPED_TRACE(number);
    Masses(number);
    EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 9);
    EXPECT_EQ(LastTrace(), "error[9] in " + kName + "(): Subscript out of range");
    ExpectPlugged(number);
    EXPECT_EQ(NumberOf("CalibSettings."), static_cast<std::size_t>(number));
  }
}

TEST_F(PlugValues, AreZeroWithoutASettingAndStillMarkTheMassAsSeen) {
  instrument.settings.erase("Calibration/AICAltSPPlugValueForMass3");
  Masses(6);
  Run();
  EXPECT_EQ(data.peaks(2).Voltage, 0.0);
  EXPECT_EQ(data.peaks(2).Abundance, 200000);
}

TEST_F(PlugValues, KeepTheMarkOfTheMassWhoseSettingFails) {
  Masses(6);
  journal.fail_operation = "CalibSettings.GetValue(Calibration/AICAltSPPlugValueForMass3";
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), fakes::kInjectedNumber);
  EXPECT_EQ(data.peaks(1).Voltage, 102.0);
  EXPECT_EQ(data.peaks(2).Abundance, 200000);
  EXPECT_EQ(data.peaks(2).Voltage, 7.0);
  EXPECT_EQ(data.peaks(3).Abundance, 7);
}

TEST_F(PlugValues, NeedTheFlagToBeExactlyYes) {
  for (const char* other : {"yes", "YES", "", "1", " Yes"}) {
    instrument.flags["EnableAICAltSPPlugValues"] = other;
    data.peaks(0).Abundance = 0;
    Run();
    EXPECT_EQ(data.peaks(0).Abundance, 150000) << other;
  }
}

TEST_F(PlugValues, TakeTheirWayAtSetpoint83Too) {
  Masses(6);
  Run(83);
  ExpectPlugged(6);
}

TEST_F(PlugValues, NeedMassesThatWereStored) {
  data.expected_masses = {};
  data.peaks.ReDim(0, 9);
  EXPECT_EQ(ErrorNumberOf([&] { Run(); }), 13);
  EXPECT_EQ(LastTrace(), "error[13] in " + kName + "(): Type mismatch");
}

}  // namespace
}  // namespace tof
