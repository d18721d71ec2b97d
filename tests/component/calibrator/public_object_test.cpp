// The calibrator as its host sees it: what is the same for every call, and what outlives one.
#include "tests/support/calibration_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr const char* kDataSet = "D:\\Data\\Logfiles\\AbImmunecalib_SpotFireDataSetLog.csv";
constexpr const char* kDataSetHeader =
    "Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance\r\n";

std::size_t LinesIn(const std::string& bytes) {
  std::size_t lines = 0;
  for (std::size_t at = bytes.find("\r\n"); at != std::string::npos;
       at = bytes.find("\r\n", at + 1))
    ++lines;
  return lines;
}

class TheCalibrator : public fakes::CalibrationFixture {
 protected:
  // Rows that the data-set file gets for what the object holds now.
  std::size_t DataSetRows() {
    host.files.erase(kDataSet);
    calibrator->WriteDataToSpotFireLog();
    return LinesIn(host.files.at(kDataSet).bytes) - 1;
  }
};

TEST_F(TheCalibrator, AnnouncesItsTestHookAndDoesNothingElse) {
  Create().TestNewStuff();
  EXPECT_THAT(host.trace->lines, ElementsAre("Entry TestNewStuff 1", "Exit TestNewStuff 1"));
  EXPECT_THAT(journal.entries(),
              ElementsAre("Trace.Entry(TestNewStuff,1)", "Trace.Exit(TestNewStuff,1)"));
}

TEST_F(TheCalibrator, ReplacesVoltagesBelowTheMinimumOnRequestAlone) {
  instrument.avoid_aic = false;
  instrument.flags[instrument.flag_key] = "No";
  instrument.settings["Calibration/AIC_SetpointToUse"] = 84.0;
  instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
  instrument.settings["Calibration/AIC_RF_HighValue"] = 24.0;
  instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
  instrument.settings["Calibration/AIC_TargetMinAb"] = 100.0;
  instrument.settings["Calibration/AIC_TargetMaxAb"] = 200.0;
  instrument.abundance_at = [](double, double volts) { return volts == 23.0 ? 150.0 : 50.0; };
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(calibrator->Peaks()(0).Voltage, 20.0);

  Survey survey(0, 0);
  survey(0).Abundances =
      BoundedArray<std::int32_t>(std::vector<std::int32_t>(instrument.sample_masses.size(), 100));
  calibrator->ReplaceAnyVoltagesForAbundancesBelowMinimum(survey, 4.0);
  for (const CalibMassPeakData& peak : calibrator->Peaks()) {
    EXPECT_EQ(peak.Voltage, 23.0);
    EXPECT_EQ(peak.Abundance, 150);
  }
}

TEST_F(TheCalibrator, RaisesNothingWhenNothingWasSurveyedYet) {
  Create();
  calibrator->ReplaceAnyVoltagesForAbundancesBelowMinimum(Survey(), 4.0);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[9] in ReplaceAnyVoltagesForAbundancesBelowMinimum(): "
                          "Subscript out of range"));
}

TEST_F(TheCalibrator, SwallowsAFailureOfItsTestHookWithALineOfItsOwnForm) {
  Create();
  journal.fail_operation = "Trace.Entry";
  EXPECT_NO_THROW(calibrator->TestNewStuff());
  EXPECT_THAT(host.trace->lines,
              ElementsAre("TestNewStuff 1: Error[4711] in TestNewStuff(): Injected fault",
                          "Exit TestNewStuff 1"));
  journal.fail_operation = "Trace.";
  EXPECT_NO_THROW(calibrator->TestNewStuff());
}

TEST_F(TheCalibrator, TreatsOptionalArgumentsThatAreLeftOutAsFalseFalseMinusOneMinusOne) {
  Create();
  optional = {.bOKtoFail = false,
              .bThisIsAManualCalibration = false,
              .dTradWeighting = -1.0,
              .dPeakFindTimeWindow = -1.0};
  EXPECT_NE(Calibrate(), nullptr);
  const std::vector<std::string> with = host.trace->lines;

  fakes::Journal other_journal;
  fakes::FakeHost other_host(other_journal);
  const ModuleStateScope fresh;
  fakes::FakeInstrument other_instrument(other_journal, other_host);
  TofCalibrator other(other_instrument, other_host, events);
  EXPECT_NE(other.calibrateTOFMassAxis(n_spectra, masses, times, suppress_aic), nullptr);
  EXPECT_EQ(other_host.trace->lines, with);
}

TEST_F(TheCalibrator, TakesTheSettingsWindowWhenTheArgumentIsLeftOut) {
  Calibrate();
  journal.Clear();
  bool aic = false;
  EXPECT_TRUE(calibrator->GetAveragedTimesForCalibration(masses, n_spectra, aic).IsArray());
  EXPECT_THAT(journal.Only({"SpecParser."}),
              ElementsAre("SpecParser.GetCalibrantPeakAttributes(0.5)",
                          "SpecParser.GetCalibrantPeakAttributes(0.5)",
                          "SpecParser.GetCalibrantPeakAttributes(0.5)",
                          "SpecParser.GetCalibrantPeakAttributes(0.5)"));
}

TEST_F(TheCalibrator, SharesTraceAndCalibrationLogWithEveryObjectOfItsThread) {
  Create();
  TofCalibrator other(instrument, host, events);
  EXPECT_THAT(journal.Only({"Host.CreateObject", "Trace.Put", "Trace.Get"}), IsEmpty());
  EXPECT_NE(Calibrate(), nullptr);
  host.Sleep(5000);
  EXPECT_NE(other.calibrateTOFMassAxis(n_spectra, masses, times, suppress_aic), nullptr);

  int logs = 0;
  for (const auto& [path, file] : host.files) {
    if (path.find("CalibrationLog_") == std::string::npos) continue;
    ++logs;
    EXPECT_EQ(file.bytes.find("===CALIBRATION "), 0U);
    EXPECT_EQ(file.bytes.rfind("===CALIBRATION "), 0U);
    EXPECT_EQ(file.open_streams, 1);
  }
  EXPECT_EQ(logs, 1);
}

TEST_F(TheCalibrator, HasNothingToReportBeforeItsFirstCalibration) {
  Create();
  bool aic = false;
  EXPECT_TRUE(calibrator->GetAveragedTimesForCalibration(masses, n_spectra, aic).IsEmpty());
  calibrator->WriteDataToSpotFireLog();
  EXPECT_EQ(host.files.at(kDataSet).bytes, kDataSetHeader);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[13] in GetAveragedTimesForCalibration(): Type mismatch",
                          "error[9] in WriteDataToSpotFireLog(): Subscript out of range"));
  EXPECT_THAT(events.events, IsEmpty());
}

TEST_F(TheCalibrator, CalibratesTwiceInARowAndKeepsWhatTheLastOneMeasured) {
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(DataSetRows(), 6U * 3U);

  masses = Variant::DoubleArray({118.0863, 622.029, 922.0098, 1521.9715});
  n_spectra = 2;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(DataSetRows(), 4U * 2U);
  EXPECT_THAT(events.events, IsEmpty());
}

TEST_F(TheCalibrator, KeepsTheMeasurementsOfTheLastCalibrationWhenTheNextIsAbortedEarly) {
  Calibrate();
  host.files.erase(kDataSet);
  calibrator->WriteDataToSpotFireLog();
  const std::string measured = host.files.at(kDataSet).bytes;

  instrument.abort_requested = -1;
  n_spectra = 2;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(1, "User aborted")));
  host.files.erase(kDataSet);
  calibrator->WriteDataToSpotFireLog();
  EXPECT_EQ(host.files.at(kDataSet).bytes, measured);
}

TEST_F(TheCalibrator, SizesItsArraysFromTheMassesOfTheLastCalibration) {
  Calibrate();  // six masses
  bool aic = false;
  const Variant seven =
      Variant::DoubleArray({118.0863, 322.0481, 622.029, 922.0098, 1221.9906, 1521.9715, 1821.95});
  EXPECT_TRUE(calibrator->GetAveragedTimesForCalibration(seven, n_spectra, aic).IsEmpty());
  EXPECT_THAT(host.trace->Texts().back(),
              HasSubstr("error[9] in GetAveragedTimesForCalibration(): Subscript out of range"));
}

TEST_F(TheCalibrator, WritesTheStateOfTheLastStoreBackWhenALaterStoreFails) {
  Calibrate();
  instrument.setpoints[18] = std::int16_t{2};
  journal.fail_operation = "SetpointTable.GetSetpoint(18)";
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_EQ(instrument.setpoints.at(18), Variant(std::int16_t{4}));
}

TEST_F(TheCalibrator, ReturnsTheObjectThatIsInForceEachTime) {
  const auto first = Calibrate();
  const auto second = Calibrate();
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(second, instrument.in_force);
}

TEST_F(TheCalibrator, AddsTheDumpsOfEveryCalibrationToOneLog) {
  Calibrate();
  const std::string path = "D:\\Data\\Logfiles\\CalibrationLog_20240229_130509.txt";
  const std::size_t after_one = LinesIn(host.files.at(path).bytes);
  Calibrate();
  const std::size_t header_lines = 2;
  EXPECT_EQ(LinesIn(host.files.at(path).bytes) - after_one, after_one - header_lines);
}

}  // namespace
}  // namespace tof
