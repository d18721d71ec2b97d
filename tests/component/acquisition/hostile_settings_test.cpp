// Settings and an instrument that make no sense: an acquisition ends with a defined error or a
// defined result, never with neither.
#include <algorithm>
#include <cmath>
#include <limits>

#include "component/acquisition/time_spanned_peak_times.h"
#include "tests/support/aic_fixture.h"

namespace tof {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kAbsent = -12345.0;  // stands for no setting at all

// A ramp over 20, 22 and 24 V, or a search per mass at setpoint 83; three masses, 300,000 counts of
// each everywhere but at 22 V, where there are 150,000.
class HostileSettings : public fakes::AicFixture {
 protected:
  HostileSettings() {
    for (const auto& [key, value] : {std::pair("AIC_RF_LowValue", 20.0),
                                     {"AIC_RF_HighValue", 24.0},
                                     {"AIC_RF_Step", 2.0},
                                     {"AIC_SearchSpeedUpFactor", 1.0}}) {
      Set(key, value);
    }
    instrument.abundance_at = [](double, double volts) { return volts == 22.0 ? 150e3 : 300e3; };
    instrument.searched_rf_value = [](double) { return 22.0; };
    n_spectra = 2;
    data.measured_times.ReDim({0, 1}, {0, 2});
  }
  void Set(const std::string& key, double value) {
    instrument.settings["Calibration/" + key] = value;
    if (value == kAbsent) instrument.settings.erase("Calibration/" + key);
  }
  void AtSetpoint83() {
    Set("AIC_SetpointToUse", 83.0);
    setpoint_id = 83;
  }
  // The number of the error that ends the acquisition, 0 for times.
  std::int32_t Measure() {
    host.trace->Forget();
    times =
        GetTimeSpannedCalibrantPeakTimes(parts, host, setpoint_id, log, data, n_spectra, window);
    const std::vector<std::string> texts = TextsOf("GetTimeSpannedCalibrantPeakTimes");
    const std::string begin = "error[";
    const bool failed = !texts.empty() && texts.back().rfind(begin, 0) == 0;
    EXPECT_EQ(times.IsEmpty(), failed);
    return failed ? std::stoi(texts.back().substr(begin.size())) : 0;
  }

  std::int32_t setpoint_id = 84;
  double window = 0.5;
};

struct RangeCase {
  const char* name;
  double low;
  double high;
  double step;
  std::int32_t error_of_ramp;        // 0: times
  std::int32_t error_of_search = 0;  // which has no use for the steps, but for their number
};

class HostileRange : public HostileSettings, public ::testing::WithParamInterface<RangeCase> {
 protected:
  HostileRange() {
    Set("AIC_RF_LowValue", GetParam().low);
    Set("AIC_RF_HighValue", GetParam().high);
    Set("AIC_RF_Step", GetParam().step);
  }
};

TEST_P(HostileRange, EndsARampAsDefined) {
  EXPECT_EQ(Measure(), GetParam().error_of_ramp);
}

TEST_P(HostileRange, EndsASearchPerMassAsDefined) {
  AtSetpoint83();
  EXPECT_EQ(Measure(), GetParam().error_of_search);
}

INSTANTIATE_TEST_SUITE_P(
    Ranges, HostileRange,
    ::testing::Values(RangeCase{"StepZero", 20.0, 24.0, 0.0, 11, 11},
                      RangeCase{"StepZeroInARangeOfZero", 20.0, 20.0, 0.0, 6, 6},
                      RangeCase{"StepMinusZero", 20.0, 24.0, -0.0, 11, 11},
                      RangeCase{"StepAbsent", 20.0, 24.0, kAbsent, 11, 11},
                      RangeCase{"AllAbsent", kAbsent, kAbsent, kAbsent, 6, 6},
                      RangeCase{"NegativeStep", 20.0, 24.0, -2.0, 9},
                      RangeCase{"LowAboveHigh", 24.0, 20.0, 2.0, 9},
                      RangeCase{"LowAboveHighByLessThanHalfAStep", 24.0, 23.5, 2.0, 0},
                      RangeCase{"DownWithANegativeStep", 24.0, 20.0, -2.0, 0},
                      RangeCase{"TinyStep", 20.0, 24.0, 1e-4, 6},
                      RangeCase{"StepSmallerThanTheNumbersResolve", 1e6, 1e6 + 1.0, 1e-14, 6},
                      RangeCase{"StepThatOverflowsTheQuotient", 20.0, 24.0, 1e-310, 6, 6},
                      RangeCase{"NaNLow", kNaN, 24.0, 2.0, 6},
                      RangeCase{"NaNHigh", 20.0, kNaN, 2.0, 6},
                      RangeCase{"NaNStep", 20.0, 24.0, kNaN, 6},
                      RangeCase{"InfiniteHigh", 20.0, kInfinity, 2.0, 6},
                      RangeCase{"InfiniteLow", kInfinity, 24.0, 2.0, 6},
                      RangeCase{"MinusInfiniteLow", -kInfinity, 24.0, 2.0, 6},
                      RangeCase{"InfiniteBoth", kInfinity, kInfinity, 2.0, 6, 6},
                      RangeCase{"InfiniteStep", 20.0, 24.0, kInfinity, 0},
                      RangeCase{"MinusInfiniteStep", 20.0, 24.0, -kInfinity, 0},
                      RangeCase{"RangeBeyondTheDoubles", -1e308, 1e308, 2.0, 6, 6},
                      RangeCase{"HugeVoltages", 1e300, 1e300, 2.0, 0}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(HostileSettings, OfARampMayAskFor32767StepsAndNoMore) {
  journal.keep_entries = false;
  host.trace->on = false;
  parts = Collaborators();
  log.stream = nullptr;
  data.expected_masses = Variant::DoubleArray({400.0});
  data.measured_times.ReDim({0, 1}, {0, 0});
  Set("AIC_RF_LowValue", 0.0);
  Set("AIC_RF_HighValue", 32767.0);
  Set("AIC_RF_Step", 1.0);
  EXPECT_TRUE(GetTimeSpannedCalibrantPeakTimes(parts, host, 84, log, data, 2, window).IsArray());
  EXPECT_EQ(instrument.spectra_taken, 2 * 32768 + 2);
  EXPECT_EQ(data.peaks(0).Voltage, 22.0);
  Set("AIC_RF_HighValue", 32768.0);
  EXPECT_TRUE(GetTimeSpannedCalibrantPeakTimes(parts, host, 84, log, data, 2, window).IsEmpty());
  EXPECT_EQ(instrument.spectra_taken, 2 * 32768 + 2);
}

struct SettingCase {
  const char* name;
  const char* key;
  double value;
  std::int32_t error_of_ramp;  // 0: times
  std::int32_t error_of_search;
};

class HostileSetting : public HostileSettings, public ::testing::WithParamInterface<SettingCase> {
 protected:
  HostileSetting() {
    Set(GetParam().key, GetParam().value);
    instrument.flags["AIC_UseAbScalars"] = "Yes";
    for (const char* key : {"AIC_ScalarForMass0", "AIC_ScalarForMass1", "AIC_ScalarForMass2"}) {
      if (std::string(GetParam().key) != key) Set(key, 1.0);
    }
  }
};

TEST_P(HostileSetting, EndsARampAsDefined) {
  EXPECT_EQ(Measure(), GetParam().error_of_ramp);
}

TEST_P(HostileSetting, EndsASearchPerMassByTheFirmwareAsDefined) {
  AtSetpoint83();
  instrument.flags["AIC_RunFastVersion"] = "Yes";
  EXPECT_EQ(Measure(), GetParam().error_of_search);
}

INSTANTIATE_TEST_SUITE_P(
    Settings, HostileSetting,
    ::testing::Values(SettingCase{"MinimumAboveMaximum", "AIC_TargetMinAb", 250e3, 0, 0},
                      SettingCase{"NegativeMinimum", "AIC_TargetMinAb", -1.0, 0, 0},
                      SettingCase{"NaNMinimum", "AIC_TargetMinAb", kNaN, 0, 0},
                      SettingCase{"InfiniteMinimum", "AIC_TargetMinAb", kInfinity, 0, 0},
                      // A number that the firmware's single precision cannot hold.
                      SettingCase{"HugeMinimum", "AIC_TargetMinAb", 1e300, 0, 6},
                      SettingCase{"MaximumZero", "AIC_TargetMaxAb", 0.0, 0, 0},
                      SettingCase{"NegativeMaximum", "AIC_TargetMaxAb", -5.0, 0, 0},
                      SettingCase{"MaximumAbsent", "AIC_TargetMaxAb", kAbsent, 0, 0},
                      SettingCase{"MaximumBeyond32Bits", "AIC_TargetMaxAb", 3e9, 6, 6},
                      SettingCase{"NaNMaximum", "AIC_TargetMaxAb", kNaN, 6, 6},
                      SettingCase{"InfiniteMaximum", "AIC_TargetMaxAb", kInfinity, 6, 6},
                      SettingCase{"HugeSpeedUp", "AIC_SearchSpeedUpFactor", 1e39, 0, 6},
                      SettingCase{"NaNSpeedUp", "AIC_SearchSpeedUpFactor", kNaN, 0, 0},
                      SettingCase{"ScalarZero", "AIC_ScalarForMass1", 0.0, 0, 0},
                      SettingCase{"NegativeScalar", "AIC_ScalarForMass1", -2.0, 0, 0},
                      SettingCase{"NaNScalar", "AIC_ScalarForMass1", kNaN, 0, 0},
                      SettingCase{"InfiniteScalar", "AIC_ScalarForMass1", kInfinity, 0, 0},
                      SettingCase{"ScalarThatOverflows", "AIC_ScalarForMass1", 1e308, 6, 0},
                      SettingCase{"ScalarAbsent", "AIC_ScalarForMass1", kAbsent, 0, 0}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(HostileSettings, LeaveAMassWithAScalarOfZeroAtTheStepNearestAboveTheBand) {
  instrument.flags["AIC_UseAbScalars"] = "Yes";
  Set("AIC_ScalarForMass0", 0.0);
  Set("AIC_ScalarForMass1", -1.0);
  Set("AIC_ScalarForMass2", 1.0);
  EXPECT_EQ(Measure(), 0);
  EXPECT_THAT(ChosenVoltages(), ElementsAre(22.0, 22.0, 22.0));
  EXPECT_THAT(ChosenAbundances(), ElementsAre(150000, 150000, 150000));
  EXPECT_THAT(Log(), HasSubstr("mass[0] stays above the maximum, [voltage,ab]=[22, 150000]\r\n"
                               "mass[1] stays above the maximum, [voltage,ab]=[22, 150000]\r\n"))
      << "the maximum is the scaled one, as in the choice";
  EXPECT_THAT(Log(), Not(HasSubstr("mass[2] stays")));
}

TEST_F(HostileSettings, LeaveAMassThatIsEligibleOnlyWhenScaledInTheBand) {
  instrument.flags["AIC_UseAbScalars"] = "Yes";
  Set("AIC_ScalarForMass0", 2.0);
  Set("AIC_ScalarForMass1", 1.0);
  Set("AIC_ScalarForMass2", 1.0);
  instrument.abundance_at = [](double mass, double) { return mass == 100.0 ? 300e3 : 150e3; };
  EXPECT_EQ(Measure(), 0);
  EXPECT_EQ(ChosenAbundances()[0], 300000);
  EXPECT_THAT(Log(), Not(HasSubstr("stays"))) << "below twice the maximum of 200,000";
}

TEST_F(HostileSettings, CostNoSurveyThroughAMinimumThatOnlyTheLogWouldNeed) {
  log.stream = nullptr;
  journal.fail_operation = "CalibSettings.GetValue(Calibration/AIC_TargetMinAb";
  EXPECT_EQ(Measure(), 0);
  AtSetpoint83();
  EXPECT_EQ(Measure(), 0);
}

TEST_F(HostileSettings, ListEveryMassWhenTheMinimumIsAboveTheMaximum) {
  Set("AIC_TargetMinAb", 250e3);
  EXPECT_EQ(Measure(), 0);
  for (const char* mass : {"mass[0]", "mass[1]", "mass[2]"}) {
    EXPECT_THAT(Log(), HasSubstr(std::string(mass) +
                                 " stays below the minimum, [voltage,ab]=[22, 150000]\r\n"));
  }
}

TEST_F(HostileSettings, MeasureAtTheNearestStepForAMaximumThatNothingIsBelow) {
  Set("AIC_TargetMaxAb", -5.0);
  Set("AIC_TargetMinAb", -10.0);
  EXPECT_EQ(Measure(), 0);
  EXPECT_THAT(ChosenVoltages(), ElementsAre(22.0, 22.0, 22.0));
  EXPECT_THAT(Log(), HasSubstr("mass[2] stays above the maximum, [voltage,ab]=[22, 150000]\r\n"));
}

TEST_F(HostileSettings, OfTheScaleFactorCountLikeThoseOfTheBand) {
  for (const auto& [factor, error] :
       {std::pair(kNaN, 6), {kInfinity, 6}, {1e308, 6}, {0.0, 0}, {-1.0, 0}}) {
    instrument.scale_factor = factor;
    EXPECT_EQ(Measure(), error) << factor;
  }
}

TEST_F(HostileSettings, OfAListOfAnotherLengthThanTheMasses) {
  struct Row {
    std::vector<double> list;
    std::int32_t error_of_ramp;
    std::int32_t error_of_search;
  };
  for (const Row& row :
       {Row{{}, 9, 9}, Row{{100.0, 400.0}, 9, 0}, Row{{1.0, 2.0, 3.0, 4.0, 5.0}, 0, 0}}) {
    SCOPED_TRACE(row.list.size());
    instrument.sample_masses = row.list;
    Set("AIC_SetpointToUse", 84.0);
    setpoint_id = 84;
    EXPECT_EQ(Measure(), row.error_of_ramp);
    AtSetpoint83();
    instrument.setpoints[83] = 75.0;
    EXPECT_EQ(Measure(), row.error_of_search);
  }
}

TEST_F(HostileSettings, NeverMeasureAtZeroVoltsAMassThatTheParserLeavesOut) {
  instrument.masses_left_out = 1;
  EXPECT_EQ(Measure(), 9);
  EXPECT_EQ(NumberOf("SetpointTable.SetSetpoint(84,5,0)"), 0U);
  AtSetpoint83();
  EXPECT_EQ(Measure(), 9);
}

TEST_F(HostileSettings, OfTheSettleTimeEndOrSkipTheWait) {
  for (const auto& [seconds, error] : {std::pair(kNaN, 6), {kInfinity, 6}, {3e9, 6}, {-5.0, 0}}) {
    parts.settling_time_sec = seconds;
    for (const std::int32_t id : {83, 84}) {
      Set("AIC_SetpointToUse", id);
      setpoint_id = id;
      EXPECT_EQ(Measure(), error) << seconds << " at " << id;
    }
  }
}

TEST_F(HostileSettings, OfTheSetpointToUseAreTheTablesError) {
  setpoint_id = 4444;
  EXPECT_EQ(Measure(), 5000);
  // Seen by the firmware's search alone, which reads the setting again.
  setpoint_id = 83;
  instrument.abundance_at = {};
  instrument.abundance = 300e3;
  instrument.flags["AIC_RunFastVersion"] = "Yes";
  for (const auto& [value, error] : {std::pair(4444.0, 5000), {kNaN, 6}, {3e9, 6}}) {
    Set("AIC_SetpointToUse", value);
    EXPECT_EQ(Measure(), error) << value;
  }
}

TEST_F(HostileSettings, OfThePlugValuesAreWrittenAsTheyAre) {
  instrument.flags["EnableAICAltSPPlugValues"] = "Yes";
  data.expected_masses = Variant::DoubleArray({1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
  data.measured_times.ReDim({0, 1}, {0, 5});
  Set("AICAltSPPlugValueForMass1", kNaN);
  Set("AICAltSPPlugValueForMass2", kInfinity);
  Set("AICAltSPPlugValueForMass3", -1e300);
  EXPECT_EQ(Measure(), 0);
  EXPECT_EQ(NumberOf("SetpointTable.SetSetpoint(84,5,NaN)"), 1U);
  EXPECT_EQ(NumberOf("SetpointTable.SetSetpoint(84,5,Infinity)"), 1U);
  EXPECT_EQ(NumberOf("SetpointTable.SetSetpoint(84,5,-1E+300)"), 1U);
}

TEST_F(HostileSettings, OfTheEntrySetpointAreWrittenBack) {
  instrument.abundance_at = {};
  for (const double value : {kNaN, kInfinity, -1e300}) {
    for (const std::int32_t id : {83, 84}) {
      Set("AIC_SetpointToUse", id);
      setpoint_id = id;
      instrument.setpoints[id] = value;
      EXPECT_EQ(Measure(), 0) << value << " at " << id;
      EXPECT_EQ(NumberText(RfValue(id)), NumberText(value));
    }
  }
}

// The step from infinity stays there: only the count of steps ends it.
TEST_F(HostileSettings, OfASearchThatEndsAtInfinityAreAnOverflow) {
  AtSetpoint83();
  journal.keep_entries = false;
  instrument.abundance_at = {};
  instrument.abundance = 300e3;
  instrument.searched_rf_value = [](double) { return kInfinity; };
  EXPECT_EQ(Measure(), 6);
}

TEST_F(HostileSettings, OfTheNumberOfSpectraAreAnErrorOrZeros) {
  n_spectra = -1;
  EXPECT_EQ(Measure(), 9);
  n_spectra = -32768;
  EXPECT_EQ(Measure(), 9);
  n_spectra = 0;
  EXPECT_EQ(Measure(), 9) << "a ramp has no measurement to store into";
  instrument.flags["EnableAICAltSPPlugValues"] = "Yes";
  data.expected_masses = Variant::DoubleArray({1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
  EXPECT_EQ(Measure(), 0) << "plugged, there is nothing to store";
  EXPECT_THAT(fakes::Elements(AsDoubleArray(times)), ::testing::Each(0.0));
}

TEST_F(HostileSettings, NeedMasses) {
  data.expected_masses = Variant(Variant::DoubleArray(0, -1, IfEmpty::kIsAllowed));
  EXPECT_EQ(Measure(), 9);
  AtSetpoint83();
  EXPECT_EQ(Measure(), 9);
}

}  // namespace
}  // namespace tof
