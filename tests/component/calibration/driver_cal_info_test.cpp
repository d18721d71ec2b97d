// The calibration information record: what is written into it before the fit and after it.
#include "component/automation/convert.h"
#include "tests/component/calibration/driver_fixture.h"

namespace tof {
namespace {

using fakes::Driver;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class RecordAfterTheFit : public Driver {
 protected:
  RecordAfterTheFit() {
    optional.dTradWeighting = 1.0;
    left_by_the_software_.unused0.fill(std::byte{0x3C});
    left_by_the_software_.time_ns = 17.5;
    left_by_the_software_.setpoint119 = -4;
    left_by_the_software_.PolyTermPowerUseFlag = 21;
    left_by_the_software_.PolyTermsFlags = 0x2A;
    left_by_the_software_.TradWeighting = 8;
    left_by_the_software_.PolyWeighting = 9;
    left_by_the_software_.unused36.fill(std::byte{0xC3});
    // Asked for a second time right behind the coefficients' coming into force.
    journal.abort_operation = "TuneFlags.GetFlag(UseCalibrationAlgInMTObj";
    journal.request_abort = [this] { instrument.in_force->info = left_by_the_software_; };
  }
  CalInfo left_by_the_software_;
};

TEST_F(RecordAfterTheFit, IsReadAgainAndWrittenBackWithoutItsPowerUseFlagAlone) {
  ASSERT_NE(Calibrate(), nullptr);
  CalInfo expected = left_by_the_software_;
  expected.PolyTermPowerUseFlag = 0;
  EXPECT_EQ(instrument.in_force->info, expected);
}

TEST_F(RecordAfterTheFit, IsLeftAloneForAnyOtherWeighting) {
  optional.dTradWeighting = 0.5;
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(instrument.in_force->info, left_by_the_software_);
}

TEST_F(Driver, WritesTheRecordBetweenTheMeanTimesAndTheDataLog) {
  optional.dTradWeighting = 0.0;
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_THAT(journal.Only({"MassCalCoefficients.SetCalInfo", "MassCalCoefficients.Calibrate",
                            "AcqController.SetCalibCoefficients", "CalibLogFiles.OpenLogFile"}),
              ElementsAre("MassCalCoefficients.SetCalInfo", "MassCalCoefficients.Calibrate",
                          "AcqController.SetCalibCoefficients", "MassCalCoefficients.SetCalInfo",
                          "CalibLogFiles.OpenLogFile(CalibrationData,TXT)"));
}

struct RoundingCase {
  const char* name;
  Variant value;
  std::int32_t rounded;
};

class Setpoint119 : public Driver, public ::testing::WithParamInterface<RoundingCase> {};

TEST_P(Setpoint119, IsReadAsA32BitIntegerHalvesToEven) {
  instrument.setpoints[119] = GetParam().value;
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(instrument.in_force->info.setpoint119, GetParam().rounded);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Setpoint119,
    ::testing::Values(RoundingCase{"EvenHalf", 2.5, 2}, RoundingCase{"OddHalf", 3.5, 4},
                      RoundingCase{"Up", 2.6, 3}, RoundingCase{"NegativeHalf", -2.5, -2},
                      RoundingCase{"Beyond16Bits", 100000.5, 100000},
                      RoundingCase{"Text", "12", 12}, RoundingCase{"True", true, -1}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(Driver, FailsForASetpoint119Beyond32Bits) {
  instrument.setpoints[119] = 3e9;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events, ElementsAre(Pair(6, "Overflow")));
}

class UseThisPowerFlag : public Driver, public ::testing::WithParamInterface<RoundingCase> {};

TEST_P(UseThisPowerFlag, IsRoundedHalvesToEven) {
  optional.dTradWeighting = 0.0;
  instrument.settings["Calibration/UseThisPowerFlag"] = ToDouble(GetParam().value);
  std::int32_t fitted_with = -1;
  journal.abort_operation = "TuneFlags.GetFlag(UseCalibrationAlgInMTObj";
  journal.request_abort = [&] { fitted_with = instrument.in_force->info.PolyTermPowerUseFlag; };
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_EQ(fitted_with, GetParam().rounded);
  EXPECT_EQ(Traced("calInfo.PolyTermPowerUseFlag = " + std::to_string(GetParam().rounded)), 1);
}

INSTANTIATE_TEST_SUITE_P(Cases, UseThisPowerFlag,
                         ::testing::Values(RoundingCase{"EvenHalf", 2.5, 2},
                                           RoundingCase{"OddHalf", 3.5, 4},
                                           RoundingCase{"LargerOddHalf", 83.5, 84},
                                           RoundingCase{"Down", 82.4, 82},
                                           RoundingCase{"Beyond16Bits", 40000.0, 40000}),
                         [](const auto& one) { return std::string(one.param.name); });

class MeanRawTimes : public Driver {};

TEST_F(MeanRawTimes, ReplaceTheAssignedMassOfEveryMassFromTheFirstToTheLast) {
  instrument.spectrum_shift_ns = {9.0, 1.0, 2.0, 6.0};
  CalibrationState state;
  ASSERT_NE(CalibrateWith(state), nullptr);
  const auto last = static_cast<std::int32_t>(instrument.sample_masses.size()) - 1;
  ASSERT_EQ(state.data.peaks.UBound(), last);
  for (std::int32_t m = 0; m <= last; ++m) {
    const double mass = instrument.sample_masses[static_cast<std::size_t>(m)];
    EXPECT_NEAR(state.data.peaks(m).AveragedAttribs(1).time, instrument.TrueTime(mass) + 3.0, 1e-9)
        << "mass " << m;
  }
}

TEST_F(MeanRawTimes, AreThoseOfTheSecondPassAfterABadFit) {
  instrument.bad_fits = {0.5};
  instrument.spectrum_shift_ns = {0.0, 1.0, 2.0, 6.0, 0.0, 10.0, 20.0, 30.0};
  CalibrationState state;
  ASSERT_NE(CalibrateWith(state), nullptr);
  EXPECT_NEAR(state.data.peaks(5).AveragedAttribs(1).time,
              instrument.TrueTime(instrument.sample_masses[5]) + 20.0, 1e-9);
  EXPECT_THAT(events.events, IsEmpty());
}

}  // namespace
}  // namespace tof
