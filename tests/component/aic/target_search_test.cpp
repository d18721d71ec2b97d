#include "component/aic/target_search.h"

#include <limits>
#include <map>

#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::InOrder;
using fakes::RfWritten;
using fakes::SpectrumTaken;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const std::string kName = "FindRFVoltageCloserToTargetAbundance";

class FindingACloserVoltage : public fakes::AicFixture {
 protected:
  FindingACloserVoltage() {
    instrument.settings["Calibration/AIC_TargetMaxAb"] = 1000.0;
    data.peaks(1).Voltage = 80.0;
    data.peaks(1).Abundance = 50;
    instrument.abundance_at = [this](double mass, double volts) {
      return mass == 400.0 ? abundance_of_volt[volts] : 7.0;
    };
  }
  void Find(double step_size) {
    FindRFVoltageCloserToTargetAbundance(
        {parts, host, rf, data.expected_masses, data.ab_scalars, log}, data.peaks, 1, step_size);
  }

  const RfVoltage rf = Rf();
  std::map<double, double> abundance_of_volt = {{81.0, 300.0}, {82.0, 900.0}, {83.0, 1200.0}};
};

TEST_F(FindingACloserVoltage, WalksTheStepVoltByVolt) {
  Find(4.0);
  const auto one_volt = [this](const std::string& value) {
    return InOrder({RfWritten(value), fakes::kSettled, SpectrumTaken("-1"),
                    Calls{"Host.ProcessPendingMessages"}, Logged()});
  };
  const Calls maximum = fakes::BandLimitRead("AIC_TargetMaxAb");
  EXPECT_THAT(CallsMade(), ElementsAreArray(InOrder({one_volt("81"), one_volt("82"), one_volt("83"),
                                                     fakes::Repeated(4, maximum), Logged()})));
  EXPECT_EQ(RfValue(), 83.0);
}

TEST_F(FindingACloserVoltage, TracesEveryMarkerAndEveryVolt) {
  Find(3.0);
  EXPECT_THAT(
      TextsOf(kName),
      ElementsAre("1", "m_PeakAttribsOfCalibMassesAtTargetVoltages(massIdx).Voltage  = 80",
                  "m_PeakAttribsOfCalibMassesAtTargetVoltages(massIdx).Voltage + stepSize - 1 = 82",
                  "2", "3", "4", "5", "6", "7", "8", "9", "4", "5", "6", "7", "8", "9", "10",
                  "LBound(arrAbundances), UBound(arrAbundances) = 80, 82",
                  "arrAbundances(lVoltage) = 50", "arrAbundances(lVoltage) = 300",
                  ">>arrAbundances(lVoltage) > existing; replacing with ==> 300",
                  "arrAbundances(lVoltage) = 900",
                  ">>arrAbundances(lVoltage) > existing; replacing with ==> 900", "11"));
  EXPECT_EQ(host.trace->lines.front(), "Entry " + kName + " 9");
}

TEST_F(FindingACloserVoltage, MovesToTheVoltWithTheHighestAbundanceUnderTheCeiling) {
  Find(4.0);
  EXPECT_EQ(data.peaks(1).Voltage, 82.0);
  EXPECT_EQ(data.peaks(1).Abundance, 900);
  EXPECT_EQ(Log(),
            "RF voltage, Ab: 81, 300\r\n"
            "RF voltage, Ab: 82, 900\r\n"
            "RF voltage, Ab: 83, 1200\r\n"
            "for mass[1], we replaced [voltage,ab]=[80, 50] with [82, 900]\r\n");
}

TEST_F(FindingACloserVoltage, KeepsItsVoltageWhenAllVoltsExceedTheCeiling) {
  abundance_of_volt = {{81.0, 1101.0}, {82.0, 5000.0}};
  Find(3.0);
  EXPECT_EQ(data.peaks(1).Voltage, 80.0);
  EXPECT_EQ(data.peaks(1).Abundance, 50);
  EXPECT_EQ(Log(),
            "RF voltage, Ab: 81, 1101\r\n"
            "RF voltage, Ab: 82, 5000\r\n"
            "No replacement for mass[1]\r\n");
}

TEST_F(FindingACloserVoltage, TakesTheLowerOfTwoEqualVolts) {
  abundance_of_volt = {{81.0, 900.0}, {82.0, 900.0}};
  Find(3.0);
  EXPECT_EQ(data.peaks(1).Voltage, 81.0);
}

TEST_F(FindingACloserVoltage, AcceptsTenPerCentAboveTheScaledMaximumAndNotOneUnitMore) {
  struct Row {
    double maximum;
    double scalar;
    std::int32_t highest;
  };
  for (const Row& row : {Row{1000.0, 1.0, 1100}, Row{200000.0, 1.0, 220000}, Row{1000.0, 0.5, 550},
                         Row{30.0, 10.0, 330}}) {
    instrument.settings["Calibration/AIC_TargetMaxAb"] = row.maximum;
    data.ab_scalars(1) = row.scalar;
    for (const int above : {0, 1}) {
      data.peaks(1).Voltage = 80.0;
      data.peaks(1).Abundance = 50;
      abundance_of_volt = {{81.0, row.highest + above}};
      Find(2.0);
      EXPECT_EQ(data.peaks(1).Voltage, above == 0 ? 81.0 : 80.0)
          << row.maximum << " x " << row.scalar << " + " << above;
    }
  }
}

TEST_F(FindingACloserVoltage, ScalesTheMaximumByTheController) {
  instrument.scale_factor = 0.5;
  abundance_of_volt = {{81.0, 550.0}, {82.0, 551.0}};
  Find(3.0);
  EXPECT_EQ(data.peaks(1).Voltage, 81.0);
}

TEST_F(FindingACloserVoltage, DoesNotMoveForAnEqualAbundance) {
  abundance_of_volt = {{81.0, 50.0}};
  Find(2.0);
  EXPECT_EQ(data.peaks(1).Voltage, 80.0);
  EXPECT_THAT(Log(), ::testing::EndsWith("No replacement for mass[1]\r\n"));
}

// Also when the chosen voltage itself was read as an index: halves go to even.
TEST_F(FindingACloserVoltage, RoundsTheChosenVoltageToWholeVolts) {
  data.peaks(1).Voltage = 80.5;
  abundance_of_volt = {{82.0, 60.0}, {83.0, 70.0}};
  Find(3.5);
  EXPECT_THAT(journal.Only({"SpecParser.", "SetpointTable."}),
              ElementsAreArray(InOrder({{"SetpointTable.SetSetpoint(84,5,82)"},
                                        SpectrumTaken("-1"),
                                        {"SetpointTable.SetSetpoint(84,5,83)"},
                                        SpectrumTaken("-1")})));
  EXPECT_THAT(Log(), ::testing::EndsWith(
                         "for mass[1], we replaced [voltage,ab]=[80.5, 50] with [83, 70]\r\n"));
}

TEST_F(FindingACloserVoltage, TakesNoSpectrumForAStepOfOneVolt) {
  Find(1.0);
  EXPECT_EQ(instrument.spectra_taken, 0);
  EXPECT_EQ(RfValue(), 75.0);
  EXPECT_EQ(Log(), "No replacement for mass[1]\r\n");
  EXPECT_EQ(TextsOf(kName).back(), "11");
}

TEST_F(FindingACloserVoltage, EndsAtAStepThatCannotBeWalked) {
  struct Row {
    double step_size;
    const char* error;
    std::size_t traced_before;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  for (const Row& row :
       {Row{-1.0, "Error[5] = Invalid procedure call or argument", 0},
        Row{-0.25, "Error[5] = Invalid procedure call or argument", 0},
        Row{-infinity, "Error[5] = Invalid procedure call or argument", 0},
        Row{std::numeric_limits<double>::quiet_NaN(), "Error[6] = Overflow", 0},
        Row{infinity, "Error[6] = Overflow", 0}, Row{3e9, "Error[6] = Overflow", 3},
        Row{0.0, "Error[9] = Subscript out of range", 3}}) {
    const std::size_t before = TextsOf(kName).size();
    Find(row.step_size);
    EXPECT_EQ(LastTrace(), row.error) << row.step_size;
    EXPECT_EQ(TextsOf(kName).size(), before + row.traced_before + 1) << row.step_size;
  }
  EXPECT_THAT(CallsMade(), IsEmpty());
  EXPECT_EQ(data.peaks(1).Voltage, 80.0);
}

TEST_F(FindingACloserVoltage, WalksUpToTheLast32BitNumberAndNotBeyondIt) {
  data.peaks(1).Voltage = 2147483645.0;
  instrument.abundance_at = [](double, double volts) { return volts - 2147483600.0; };
  Find(3.0);
  EXPECT_EQ(instrument.spectra_taken, 2);
  EXPECT_EQ(data.peaks(1).Voltage, 2147483645.0);
  EXPECT_THAT(Log(), ::testing::EndsWith("RF voltage, Ab: 2147483647, 47\r\n"
                                         "No replacement for mass[1]\r\n"));
  Find(4.0);
  EXPECT_EQ(LastTrace(), "Error[6] = Overflow");
}

TEST_F(FindingACloserVoltage, EndsAtAMassThatIsNotThere) {
  FindRFVoltageCloserToTargetAbundance(
      {parts, host, rf, data.expected_masses, data.ab_scalars, log}, data.peaks, 3, 2.0);
  EXPECT_EQ(LastTrace(), "Error[9] = Subscript out of range");
}

TEST_F(FindingACloserVoltage, EndsAtAMassWithoutAScalarBehindTheMeasurement) {
  data.ab_scalars = BoundedArray<double>{1.0};
  Find(2.0);
  EXPECT_EQ(LastTrace(), "Error[9] = Subscript out of range");
  EXPECT_EQ(instrument.spectra_taken, 1);
  EXPECT_EQ(data.peaks(1).Voltage, 80.0);
}

TEST_F(FindingACloserVoltage, SwallowsAnAbortThatTheNextWaitMeetsAgain) {
  instrument.abort_requested = -1;
  Find(4.0);
  EXPECT_EQ(LastTrace(), "Error[1] = User aborted");
  EXPECT_EQ(RfValue(), 81.0);
  Find(4.0);
  EXPECT_EQ(LastTrace(), "Error[1] = User aborted");
  EXPECT_EQ(instrument.spectra_taken, 0);
}

TEST_F(FindingACloserVoltage, KeepsTheReplacementsMadeBeforeAFailure) {
  // The third reading of the maximum fails: volts 80 and 81 have been judged.
  int readings = 0;
  journal.request_abort = [&] {
    if (++readings == 3) journal.fail_operation = "CalibSettings.";
  };
  journal.abort_operation = "CalibSettings.";
  Find(4.0);
  EXPECT_EQ(LastTrace(), "Error[4711] = Injected fault");
  EXPECT_EQ(data.peaks(1).Voltage, 81.0);
  EXPECT_EQ(data.peaks(1).Abundance, 300);
}

TEST_F(FindingACloserVoltage, TracesWithoutItsNameAndSwallowsEveryFailure) {
  fakes::FailEachCall(
      journal,
      [&] {
        data.peaks(1).Voltage = 80.0;
        data.peaks(1).Abundance = 50;
      },
      [&] { EXPECT_NO_THROW(Find(3.0)); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(LastTrace(), "Error[4711] = Injected fault");
      });
}

class HavingHadAnAbundanceAboveTheMin : public fakes::AicFixture {
 protected:
  HavingHadAnAbundanceAboveTheMin() { instrument.settings["Calibration/AIC_TargetMinAb"] = 100.0; }
  static Survey WithAbundances(const std::vector<std::int32_t>& of_mass_1) {
    Survey survey(0, static_cast<std::int32_t>(of_mass_1.size()) - 1, IfEmpty::kIsAllowed);
    for (std::int32_t i = 0; i <= survey.UBound(); ++i) {
      survey(i).Abundances =
          BoundedArray<std::int32_t>{5000, of_mass_1[static_cast<std::size_t>(i)]};
    }
    return survey;
  }
  bool HasHad(const Survey& survey, std::int32_t mass_index = 1) {
    return bThisMassHasHadAnAbundanceAboveTheMin(parts, log, survey, mass_index);
  }
};

const Calls kMinimumRead = fakes::BandLimitRead("AIC_TargetMinAb");

TEST_F(HavingHadAnAbundanceAboveTheMin, IsTrueForAnAbundanceExactlyAtTheMinimum) {
  EXPECT_TRUE(HasHad(WithAbundances({99, 100, 99})));
  EXPECT_FALSE(HasHad(WithAbundances({99, 99, 99})));
  EXPECT_EQ(Log(),
            "mass[1] has had an abundance above the min, so let's go search for a better "
            "abundance\r\n"
            "mass[1] has never had an abundance above the min, so we won't search for a better "
            "abundance\r\n");
}

TEST_F(HavingHadAnAbundanceAboveTheMin, WalksFromTheLastPointAndStopsAtTheFirstThatHas) {
  EXPECT_TRUE(HasHad(WithAbundances({500, 100, 99})));
  EXPECT_THAT(CallsMade(), ElementsAreArray(InOrder({fakes::Repeated(2, kMinimumRead), Logged()})));
}

TEST_F(HavingHadAnAbundanceAboveTheMin, DoesNotScaleTheMinimumByTheMass) {
  data.ab_scalars(1) = 0.5;
  EXPECT_FALSE(HasHad(WithAbundances({99})));
  instrument.scale_factor = 0.5;
  EXPECT_TRUE(HasHad(WithAbundances({50})));
}

TEST_F(HavingHadAnAbundanceAboveTheMin, IsFalseForASurveyWithoutPoints) {
  EXPECT_FALSE(HasHad(WithAbundances({})));
  EXPECT_THAT(CallsMade(), ElementsAreArray(Logged()));
  EXPECT_FALSE(HasHad(Survey()));
  EXPECT_EQ(LastTrace(), "Error[9] = Subscript out of range");
}

TEST_F(HavingHadAnAbundanceAboveTheMin, IsFalseWhenAMassWasNotSurveyed) {
  EXPECT_FALSE(HasHad(WithAbundances({500}), 2));
  EXPECT_EQ(LastTrace(), "Error[9] = Subscript out of range");
  EXPECT_EQ(Log(), "");
}

TEST_F(HavingHadAnAbundanceAboveTheMin, IsFalseAndTracedWithoutItsNameForEveryFailure) {
  const Survey survey = WithAbundances({500});
  bool answer = true;
  fakes::FailEachCall(
      journal, [&] { answer = true; }, [&] { answer = HasHad(survey); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_FALSE(answer);
        EXPECT_EQ(LastTrace(), "Error[4711] = Injected fault");
      });
}

}  // namespace
}  // namespace tof
