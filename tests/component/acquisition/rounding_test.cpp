// What an acquisition makes whole numbers of goes to the nearest, halves to the even neighbour. Of
// two halves one tells this from cutting off, the other from always rounding up.
#include "component/acquisition/abundance.h"
#include "component/acquisition/first_spectrum_survey.h"
#include "component/acquisition/instrument_state.h"
#include "component/acquisition/time_spanned_peak_times.h"
#include "tests/support/aic_fixture.h"

namespace tof {
namespace {

using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::StartsWith;

struct Rounded {
  const char* name;
  double value;
  std::int32_t whole;
};

void PrintTo(const Rounded& row, std::ostream* out) {
  *out << row.value;
}

const auto kRounded =
    ::testing::Values(Rounded{"DownToEven", 82.5, 82}, Rounded{"UpToEven", 83.5, 84},
                      Rounded{"BelowAHalf", 84.49, 84}, Rounded{"AboveAHalf", 83.51, 84});

const auto kName = [](const auto& row) { return std::string(row.param.name); };

class Rounding : public fakes::AicFixture, public ::testing::WithParamInterface<Rounded> {
 protected:
  // One mass, searched by the firmware at setpoint 83 and not adjusted.
  void SurveyAtSetpoint83() {
    instrument.settings["Calibration/AIC_TargetMinAb"] = 1.0;
    instrument.settings["Calibration/AIC_TargetMaxAb"] = 100.0;
    instrument.flags["AIC_RunFastVersion"] = "Yes";
    instrument.flags["AIC_SkipFinalLinearAbAdj"] = "Yes";
    instrument.searched_rf_value = [](double) { return 20.0; };
    data.expected_masses = Variant::DoubleArray({400.0});
    SizeFor(1);
    const RfVoltage rf = Rf(83);
    double window = 0.75;
    UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data},
                                           {.low = 20.0, .high = 22.0, .step = 2.0}, 100, window);
  }
};

TEST_P(Rounding, OfTheSetpointThatTheFirmwaresValueIsAppliedTo) {
  instrument.settings["Calibration/AIC_SetpointToUse"] = GetParam().value;
  for (const std::int32_t id : {81, 82, 83, 84, 85}) instrument.setpoints[id] = 75.0;
  instrument.abundance = 300.0;
  SurveyAtSetpoint83();
  EXPECT_EQ(journal.Only({"SetpointTable.SetSetpoint"}).back(),
            "SetpointTable.SetSetpoint(" + std::to_string(GetParam().whole) + ",5,20)");
}

TEST_P(Rounding, OfTheSetpointThatACalibrationMoves) {
  instrument.settings["Calibration/AIC_SetpointToUse"] = GetParam().value;
  instrument.setpoints[82] = 75.0;
  instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
  instrument.settings["Calibration/AIC_RF_HighValue"] = 22.0;
  instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
  instrument.flags["AIC_AlwaysRunOnly"] = "Yes";
  instrument.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
  instrument.flags["SkipCalcLikelyABeforeCalibration_LikelyA"] = "1.0";
  instrument.flags["SkipCalcLikelyABeforeCalibration_t0"] = "0.3";
  masses = data.expected_masses;
  Calibrate();
  const std::string id = std::to_string(GetParam().whole);
  EXPECT_THAT(journal.entries(), Contains("SetpointTable.SetSetpoint(" + id + ",5,20)"));
}

TEST_P(Rounding, OfTheAbundanceThatASearchPerMassStores) {
  instrument.settings["Calibration/AIC_SetpointToUse"] = 83.0;
  instrument.abundance = GetParam().value;
  SurveyAtSetpoint83();
  EXPECT_EQ(data.peaks(0).Abundance, GetParam().whole);
  EXPECT_THAT(LastTrace(), EndsWith("= [75, " + std::to_string(GetParam().whole) + "]"));
}

TEST_P(Rounding, OfTheAbundanceThatASearchPerMassStoresBehindItsSearch) {
  instrument.settings["Calibration/AIC_SetpointToUse"] = 83.0;
  instrument.abundance_at = [](double, double volts) {
    return volts == 20.0 ? GetParam().value : 300.0;
  };
  SurveyAtSetpoint83();
  EXPECT_EQ(data.peaks(0).Abundance, GetParam().whole);
}

TEST_P(Rounding, OfTheMaximumAllowableAbundance) {
  instrument.settings["Calibration/AIC_TargetMaxAb"] = GetParam().value;
  instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
  instrument.flags["AIC_SkipFinalLinearAbAdj"] = "Yes";
  data.measured_times.ReDim({0, 0}, {0, 2});
  double window = 0.75;
  const Variant answer =
      GetTimeSpannedCalibrantPeakTimes(parts, host, 83, log, data, std::int16_t{1}, window);
  EXPECT_TRUE(answer.IsArray()) << LastTrace();
  EXPECT_THAT(TextsOf("UseFirstSpectrumToFindTimesAndVoltages"),
              Contains(EndsWith("[150000] > MaxAllowableAbundance[" +
                                std::to_string(GetParam().whole) + "]")));
}

TEST_P(Rounding, OfTheAbundancesThatARampJudges) {
  instrument.settings["Calibration/AIC_TargetMaxAb"] = 200.0;
  instrument.abundance = GetParam().value;
  const RfVoltage rf = Rf();
  double window = 0.75;
  const RfRange range{.low = 20.0, .high = 20.0, .step = 2.0};
  UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data}, range, 200, window);
  EXPECT_EQ(data.peaks(1).Abundance, GetParam().whole);
  // Judged by the rounded number: at a maximum of that number it is not below it.
  SizeFor(1);
  host.trace->Forget();
  UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data}, range, GetParam().whole,
                                         window);
  EXPECT_THAT(TextsOf("UseFirstSpectrumToFindTimesAndVoltages"),
              ::testing::Not(Contains(StartsWith("Storing"))));
  UseFirstSpectrumToFindTimesAndVoltages({parts, host, rf, log, data}, range, GetParam().whole + 1,
                                         window);
  EXPECT_THAT(TextsOf("UseFirstSpectrumToFindTimesAndVoltages"), Contains(StartsWith("Storing")));
}

TEST_P(Rounding, OfEachSavedSetpointThatIsAWholeNumber) {
  SavedInstrumentState saved;
  const auto stored = [&](std::int32_t id, const std::int16_t& member) {
    for (const std::int32_t each : {18, 128, 149}) instrument.setpoints[each] = 0.0;
    instrument.setpoints[id] = GetParam().value;
    StorePreAutotuneInstrumentState(parts, saved);
    EXPECT_EQ(member, GetParam().whole) << "setpoint " << id;
    instrument.setpoints[id] = -GetParam().value;
    StorePreAutotuneInstrumentState(parts, saved);
    EXPECT_EQ(member, -GetParam().whole) << "setpoint " << id;
  };
  stored(18, saved.sample_rate);
  stored(128, saved.setpoint128);
  stored(149, saved.gain_channel_select);
}

TEST_P(Rounding, OfTheSelectionOfTheCalibrants) {
  instrument.setpoints[117] = GetParam().value;
  ReadAbundanceScalarsFromXML(parts, log, data.ab_scalars);
  EXPECT_EQ(NumberOf("AcqController.GetCalibrantMasses(" + std::to_string(GetParam().whole) + ","),
            1U);
}

INSTANTIATE_TEST_SUITE_P(Halves, Rounding, kRounded, kName);

class NoRounding : public fakes::AicFixture {};

TEST_F(NoRounding, OfTheFlagThatIsSavedAsABoolean) {
  SavedInstrumentState saved;
  for (const double value : {0.25, 0.5, -0.25}) {
    saved.high_res_enabled = false;
    instrument.setpoints[150] = value;
    StorePreAutotuneInstrumentState(parts, saved);
    EXPECT_TRUE(saved.high_res_enabled) << value;
  }
}

TEST_F(NoRounding, OfTheReadingsThatAnAveragedAbundanceAddsUp) {
  struct Row {
    std::vector<double> readings;
    std::int32_t mean;
  };
  for (const Row& row : {Row{{1.6, 1.6, 1.0}, 1},  // 2, 2 and 1 would give 2
                         Row{{2.4, 2.4, 2.8}, 3},  // 2, 2 and 3 would give 2
                         Row{{0.5, 0.5, 0.5, 0.5}, 0}, Row{{1.5, 1.5, 1.25, 1.25}, 1},
                         Row{{16777216.0, 1.0, 1.0, 1.0, 1.0}, 3355444}}) {
    std::size_t next = 0;
    instrument.abundance_at = [&](double, double) { return row.readings[next++]; };
    EXPECT_EQ(
        GetAveragedPeakAbundance(parts, 400.0, static_cast<std::int32_t>(row.readings.size())),
        row.mean)
        << ::testing::PrintToString(row.readings);
  }
}

}  // namespace
}  // namespace tof
