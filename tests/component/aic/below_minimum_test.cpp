#include "component/aic/below_minimum.h"

#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::InOrder;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const std::string kIntroduction =
    "\r\nReplacing target values with abundances that are below ab min target...\r\n";
const std::string kHeading = "\r\nFinal chosen voltages and abundances: [MassIdx, Voltage, Ab]\r\n";
constexpr const char* kErrorIn = "in ReplaceAnyVoltagesForAbundancesBelowMinimum(): ";

class ReplacingBelowMinimum : public fakes::AicFixture {
 protected:
  ReplacingBelowMinimum() {
    instrument.settings["Calibration/AIC_TargetMinAb"] = 100.0;
    instrument.settings["Calibration/AIC_TargetMaxAb"] = 1000.0;
    ChooseVoltages({80.0, 70.0, 60.0});
    SetAbundances({412, 412, 412});
    data.peaks(1).SpectrumAttribs(0, 0).time = 20300.25;
    survey.ReDim(0, 1);
    survey(0).Abundances = BoundedArray<std::int32_t>{500, 500, 50};
    survey(1).Abundances = BoundedArray<std::int32_t>{20, 20, 20};
    instrument.abundance_at = [](double, double volts) { return 10.0 * volts; };
  }
  void SetAbundances(const std::vector<std::int32_t>& abundances) {
    for (std::size_t m = 0; m < abundances.size(); ++m) {
      data.peaks(static_cast<std::int32_t>(m)).Abundance = abundances[m];
    }
  }
  void Replace(double step_size = 3.0) {
    ReplaceAnyVoltagesForAbundancesBelowMinimum(
        {parts, host, rf, data.expected_masses, data.ab_scalars, log}, survey, step_size,
        data.peaks);
  }

  const RfVoltage rf = Rf();
  Survey survey;
};

TEST_F(ReplacingBelowMinimum, OnlyLogsTheTableWhenAllMassesReachTheMinimum) {
  SetAbundances({100, 412, 5000});
  Replace();
  EXPECT_EQ(Log(), kIntroduction + kHeading + "[0, 80, 100]\r\n[1, 70, 412]\r\n[2, 60, 5000]\r\n");
  EXPECT_EQ(instrument.spectra_taken, 0);
  const Calls minimum = fakes::BandLimitRead("AIC_TargetMinAb");
  EXPECT_THAT(CallsMade(),
              ElementsAreArray(InOrder({Logged(2), fakes::Repeated(3, minimum), Logged(5)})));
}

TEST_F(ReplacingBelowMinimum, SearchesAMassThatHadReachedTheMinimum) {
  SetAbundances({412, 99, 412});
  Replace();
  EXPECT_EQ(Log(), kIntroduction +
                       "mass[1] has had an abundance above the min, so let's go search for a "
                       "better abundance\r\n"
                       "replacing optimal voltage for mass[1], time[20300.25] and abundance[99]\r\n"
                       "RF voltage, Ab: 71, 710\r\n"
                       "RF voltage, Ab: 72, 720\r\n"
                       "for mass[1], we replaced [voltage,ab]=[70, 99] with [72, 720]\r\n" +
                       kHeading + "[0, 80, 412]\r\n[1, 72, 720]\r\n[2, 60, 412]\r\n");
}

TEST_F(ReplacingBelowMinimum, LeavesAMassAloneThatNeverReachedTheMinimum) {
  SetAbundances({412, 412, 99});
  Replace();
  EXPECT_EQ(Log(), kIntroduction +
                       "mass[2] has never had an abundance above the min, so we won't search for "
                       "a better abundance\r\n" +
                       kHeading + "[0, 80, 412]\r\n[1, 70, 412]\r\n[2, 60, 99]\r\n");
  EXPECT_EQ(instrument.spectra_taken, 0);
}

TEST_F(ReplacingBelowMinimum, ComparesWithTheMinimumUnscaledByTheMass) {
  data.ab_scalars(0) = 10.0;
  SetAbundances({100, 412, 412});
  Replace();
  EXPECT_THAT(Log(), Not(HasSubstr("mass[0]")));
}

TEST_F(ReplacingBelowMinimum, PrintsNothingForZeroAndAllDigitsOfTheRest) {
  instrument.settings["Calibration/AIC_TargetMinAb"] = -1000.0;
  ChooseVoltages({0.0, 1234.5, -0.4});
  SetAbundances({0, 1234567890, -7});
  Replace();
  EXPECT_THAT(Log(), EndsWith(kHeading + "[0, , ]\r\n[1, 1235, 1234567890]\r\n[2, , -7]\r\n"));
}

TEST_F(ReplacingBelowMinimum, AnnouncesItselfAndTheRoutinesItCalls) {
  SetAbundances({412, 99, 412});
  Replace(1.0);
  std::vector<std::string> entered;
  for (const std::string& line : host.trace->lines) {
    if (line.rfind("Entry ", 0) == 0) entered.push_back(line);
  }
  EXPECT_THAT(entered, ElementsAreArray({"Entry ReplaceAnyVoltagesForAbundancesBelowMinimum 9",
                                         "Entry bThisMassHasHadAnAbundanceAboveTheMin 9",
                                         "Entry FindRFVoltageCloserToTargetAbundance 9"}));
}

TEST_F(ReplacingBelowMinimum, EndsWithoutTheTableAtAMassWithoutAttributes) {
  SetAbundances({99, 99, 412});
  data.peaks(1).SpectrumAttribs = {};
  Replace();
  EXPECT_EQ(LastTrace(), std::string("error[9] ") + kErrorIn + "Subscript out of range");
  EXPECT_EQ(data.peaks(0).Voltage, 82.0);
  EXPECT_EQ(data.peaks(1).Voltage, 70.0);
  EXPECT_THAT(Log(), Not(HasSubstr("Final chosen")));
}

TEST_F(ReplacingBelowMinimum, DoesNotNeedTheAttributesOfAMassItLeavesAlone) {
  data.peaks(1).SpectrumAttribs = {};
  Replace();
  EXPECT_THAT(Log(), HasSubstr("[1, 70, 412]\r\n"));
}

TEST_F(ReplacingBelowMinimum, GoesOnBehindAFailureOfASearch) {
  SetAbundances({99, 99, 412});
  journal.fail_operation = "SpecParser.";
  Replace();
  EXPECT_THAT(Log(), EndsWith(kHeading + "[0, 80, 99]\r\n[1, 70, 99]\r\n[2, 60, 412]\r\n"));
}

TEST_F(ReplacingBelowMinimum, EndsAtOnceWithoutMasses) {
  data.peaks = {};
  Replace();
  EXPECT_EQ(LastTrace(), std::string("error[9] ") + kErrorIn + "Subscript out of range");
  EXPECT_THAT(CallsMade(), IsEmpty());
}

TEST_F(ReplacingBelowMinimum, TracesAndSwallowsEveryFailureOfItsOwn) {
  fakes::FailEachCall(
      journal, [] {}, [&] { EXPECT_NO_THROW(Replace()); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(LastTrace(), std::string("error[4711] ") + kErrorIn + "Injected fault");
      });
}

}  // namespace
}  // namespace tof
