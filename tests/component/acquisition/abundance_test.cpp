#include "component/acquisition/abundance.h"

#include <limits>

#include "tests/component/error_number_of.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::Elements;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::Repeated;
using fakes::SettingRead;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const Calls kListAskedFor = InOrder({fakes::SetpointRead(117),
                                     {"DataDictionary.GetModeName"},
                                     {"AcqController.GetConfigurationName"},
                                     {"AcqController.GetCalibrantMasses(3,MS,Standard)"}});

class AbundanceScalars : public fakes::AicFixture {
 protected:
  void Read() { ReadAbundanceScalarsFromXML(parts, log, data.ab_scalars); }
  void UseSettings() {
    instrument.flags["AIC_UseAbScalars"] = "Yes";
    instrument.settings["Calibration/AIC_ScalarForMass0"] = 0.5;
    instrument.settings["Calibration/AIC_ScalarForMass1"] = 2.25;
    instrument.settings["Calibration/AIC_ScalarForMass2"] = -1.0;
  }
};

TEST_F(AbundanceScalars, AreOneEachAndNoSettingIsReadWithoutTheFlag) {
  for (const char* other : {"", "No", "yes", "Yes "}) {
    instrument.flags["AIC_UseAbScalars"] = other;
    data.ab_scalars = {};
    Read();
    EXPECT_THAT(Elements(data.ab_scalars), ElementsAre(1.0, 1.0, 1.0)) << other;
  }
  EXPECT_EQ(NumberOf("CalibSettings."), 0U);
}

TEST_F(AbundanceScalars, AreReadFromSettingsThatCountFromZero) {
  UseSettings();
  Read();
  EXPECT_THAT(Elements(data.ab_scalars), ElementsAre(0.5, 2.25, -1.0));
  EXPECT_EQ(Log(), "Scalars for Ab Profile, 0.5, 2.25, -1\r\n");
}

TEST_F(AbundanceScalars, AskForTheListThenTheFlagAnewForEveryMass) {
  UseSettings();
  Read();
  const auto one_mass = [](const char* key) {
    return InOrder({FlagRead("AIC_UseAbScalars"), SettingRead(std::string("Calibration/") + key)});
  };
  EXPECT_THAT(CallsMade(), ElementsAreArray(InOrder({kListAskedFor, one_mass("AIC_ScalarForMass0"),
                                                     one_mass("AIC_ScalarForMass1"),
                                                     one_mass("AIC_ScalarForMass2"), Logged()})));
}

TEST_F(AbundanceScalars, AreLoggedOnceForAllMasses) {
  Read();
  EXPECT_EQ(Log(), "Scalars for Ab Profile, 1, 1, 1\r\n");
  EXPECT_THAT(CallsMade(),
              ElementsAreArray(
                  InOrder({kListAskedFor, Repeated(3, FlagRead("AIC_UseAbScalars")), Logged()})));
  EXPECT_THAT(host.trace->lines, ElementsAre("Entry ReadAbundanceScalarsFromXML 9",
                                             "Exit ReadAbundanceScalarsFromXML 9"));
}

TEST_F(AbundanceScalars, AreZeroNotOneForAMissingSetting) {
  UseSettings();
  instrument.settings.erase("Calibration/AIC_ScalarForMass1");
  Read();
  EXPECT_THAT(Elements(data.ab_scalars), ElementsAre(0.5, 0.0, -1.0));
}

TEST_F(AbundanceScalars, AreSizedByTheInstrumentsListNotByTheMassesOfTheCalibration) {
  for (const std::size_t listed : {1U, 5U}) {
    instrument.sample_masses.assign(listed, 100.0);
    Read();
    EXPECT_EQ(data.ab_scalars.size(), listed);
    EXPECT_THAT(Elements(data.ab_scalars), Each(1.0));
  }
  EXPECT_EQ(AsDoubleArray(data.expected_masses).size(), 3U);
}

TEST_F(AbundanceScalars, RoundSetpoint117ForTheChoiceOfTheList) {
  instrument.setpoints[117] = 4.5;
  Read();
  EXPECT_EQ(NumberOf("AcqController.GetCalibrantMasses(4,MS,Standard)"), 1U);
}

TEST_F(AbundanceScalars, RefuseAnEmptyList) {
  instrument.sample_masses.clear();
  EXPECT_EQ(ErrorNumberOf([&] { Read(); }), 9);
  EXPECT_EQ(LastTrace(), "error[9] in ReadAbundanceScalarsFromXML(): Subscript out of range");
}

TEST_F(AbundanceScalars, StayAsFarAsTheyWereFilledAtAFailure) {
  UseSettings();
  journal.fail_operation = "CalibSettings.GetValue(Calibration/AIC_ScalarForMass2";
  EXPECT_EQ(ErrorNumberOf([&] { Read(); }), fakes::kInjectedNumber);
  EXPECT_THAT(Elements(data.ab_scalars), ElementsAre(0.5, 2.25, 0.0));
  EXPECT_EQ(Log(), "");
}

TEST_F(AbundanceScalars, TraceAndPassOnEveryFailure) {
  UseSettings();
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal, [] {}, [&] { raised = ErrorNumberOf([&] { Read(); }); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(raised, fakes::kInjectedNumber);
        EXPECT_EQ(LastTrace(), "error[4711] in ReadAbundanceScalarsFromXML(): Injected fault");
      });
}

class AveragedPeakAbundance : public fakes::AicFixture {
 protected:
  AveragedPeakAbundance() {
    instrument.abundance_at = [this](double, double) {
      return readings[std::min(next++, readings.size() - 1)];
    };
  }
  std::int32_t Of(const std::vector<double>& these, std::int32_t spectra) {
    readings = these;
    next = 0;
    return GetAveragedPeakAbundance(parts, 400.0, spectra);
  }

  std::vector<double> readings = {0.0};
  std::size_t next = 0;
};

TEST_F(AveragedPeakAbundance, ReadsThePeakThatOftenAndDoesNothingElse) {
  EXPECT_EQ(Of({10.0, 20.0, 60.0}, 3), 30);
  EXPECT_THAT(CallsMade(),
              ElementsAreArray(Repeated(3, Calls{"SpecParser.GetPeakAttribute(400,0.2)"})));
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry GetAveragedPeakAbundance 9", "Exit GetAveragedPeakAbundance 9"));
}

TEST_F(AveragedPeakAbundance, RoundsHalvesToEven) {
  EXPECT_EQ(Of({2.0, 3.0}, 2), 2);
  EXPECT_EQ(Of({3.0, 4.0}, 2), 4);
  EXPECT_EQ(Of({2.5}, 1), 2);
}

TEST_F(AveragedPeakAbundance, OfNoSpectraIsAnErrorWithoutALineOfItsOwn) {
  EXPECT_EQ(ErrorNumberOf([&] { Of({1.0}, 0); }), 6);
  EXPECT_THAT(CallsMade(), IsEmpty());
  EXPECT_THAT(TextsOf("GetAveragedPeakAbundance"), IsEmpty());
}

TEST_F(AveragedPeakAbundance, OfANegativeNumberOfSpectraIsZero) {
  EXPECT_EQ(Of({1.0}, -3), 0);
}

TEST_F(AveragedPeakAbundance, RaisesWhatTheParserRaises) {
  journal.fail_operation = "SpecParser.";
  EXPECT_EQ(ErrorNumberOf([&] { Of({1.0}, 2); }), fakes::kInjectedNumber);
  EXPECT_THAT(TextsOf("GetAveragedPeakAbundance"), IsEmpty());
}

TEST_F(AveragedPeakAbundance, RefusesAMeanThatIsNoWholeNumberOf32Bits) {
  EXPECT_EQ(ErrorNumberOf([&] { Of({3e9}, 1); }), 6);
  EXPECT_EQ(ErrorNumberOf([&] { Of({std::numeric_limits<double>::quiet_NaN()}, 1); }), 6);
  EXPECT_EQ(ErrorNumberOf([&] { Of({std::numeric_limits<double>::infinity()}, 1); }), 6);
}

class MassOutsideTheBand : public fakes::AicFixture {
 protected:
  void Judge(std::int32_t abundance, bool above_maximum = false) {
    CalibMassPeakData record;
    record.Voltage = 20.5;
    record.Abundance = abundance;
    LogIfOutsideBand(parts, log, 7, record, above_maximum);
  }
};

TEST_F(MassOutsideTheBand, IsLoggedBelowTheMinimumAndAboveTheMaximum) {
  Judge(99999);
  Judge(200001, true);
  // With a scalar a mass can be above its own maximum and below the minimum of all.
  Judge(50, true);
  EXPECT_EQ(Log(),
            "mass[7] stays below the minimum, [voltage,ab]=[20.5, 99999]\r\n"
            "mass[7] stays above the maximum, [voltage,ab]=[20.5, 200001]\r\n"
            "mass[7] stays above the maximum, [voltage,ab]=[20.5, 50]\r\n");
}

TEST_F(MassOutsideTheBand, IsNotOneAtTheMinimumNorAboveTheUnscaledMaximumAlone) {
  Judge(100000);
  Judge(200001);
  EXPECT_EQ(Log(), "");
  EXPECT_THAT(CallsMade(), ElementsAreArray(Repeated(2, BandJudged())));
}

TEST_F(MassOutsideTheBand, IsNotEvenLookedForWithoutALogThatTakesLines) {
  instrument.flags["AICLoggingEnabled"] = "Yes";
  Judge(50);
  EXPECT_THAT(CallsMade(), ElementsAreArray(fakes::AicLogAllowed(instrument.flag_key)));
  journal.Clear();
  log.stream = nullptr;
  Judge(50, true);
  EXPECT_THAT(CallsMade(), IsEmpty());
}

}  // namespace
}  // namespace tof
