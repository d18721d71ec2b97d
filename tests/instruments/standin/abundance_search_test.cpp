// The searches of parser and firmware on the built-in instrument.
#include <gtest/gtest.h>

#include "component/automation/error.h"
#include "tests/component/error_number_of.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

constexpr std::int32_t kRf = 83;
constexpr double kSpectrumSec = 1.0;
constexpr double kWriteSec = 0.02;
constexpr double kSettlingSec = 1.5;

description::InstrumentDescription CalibratedInstrument() {
  description::InstrumentDescription description = description::BuiltInDescription();
  description.factory_coefficients = {0.00065, 300.0};
  return description;
}

class AbundanceSearch : public testing::TestWithParam<double> {
 protected:
  double Volts() { return *SetpointOf(test_.instrument.State(), kRf).value.As<double>(); }

  double AverageAbundance(double mass) {
    const auto parser = test_.instrument.CreateSpecParser();
    double sum = 0.0;
    for (int i = 0; i < 20; ++i) {
      sum += parser->GetPeakAttribute(PeakCalculationtype::abund, mass, 0.2);
    }
    return sum / 20.0;
  }

  float SearchByFirmware(double time_ns, float speed_up = 1.0F) {
    return test_.instrument.GetFirmwareLibrary()->BinarySearchForTargetAb(
        22, 100'000.0F, 200'000.0F, speed_up, 0.1F, 20.0F, 160.0F, 1,
        static_cast<float>(time_ns - 15.0), static_cast<float>(time_ns + 15.0));
  }

  double FlightTimeNs(double mass) {
    return test_.instrument.CreateAcqController()->GetCurrentMassCalObject()->MassToTime(mass);
  }

  TestInstrument test_{CalibratedInstrument()};
};

TEST_P(AbundanceSearch, OfTheParserBringsThePeakIntoTheBand) {
  test_.instrument.CreateSpecParser()->SearchTargetAbundance(GetParam(), 0.1);
  const double abundance = AverageAbundance(GetParam());
  EXPECT_GE(abundance, 100'000.0) << Volts() << " V";
  EXPECT_LE(abundance, 200'000.0) << Volts() << " V";
}

TEST_P(AbundanceSearch, OfTheFirmwareBringsThePeakIntoTheBand) {
  const float volts = SearchByFirmware(FlightTimeNs(GetParam()));
  EXPECT_EQ(volts, static_cast<float>(Volts()));
  const double abundance = AverageAbundance(GetParam());
  EXPECT_GE(abundance, 100'000.0) << volts << " V";
  EXPECT_LE(abundance, 200'000.0) << volts << " V";
}

INSTANTIATE_TEST_SUITE_P(
    Calibrants, AbundanceSearch,
    testing::ValuesIn(description::CalibrantMasses(description::BuiltInDescription())));

TEST_F(AbundanceSearch, LeavesTheVoltageSettled) {
  test_.instrument.CreateSpecParser()->SearchTargetAbundance(1178.775421, 0.1);
  const auto table = test_.instrument.CreateDataDictionary()->GetSetpointTable();
  EXPECT_NEAR(*table->GetCurrentValue(kRf).As<double>(), Volts(), 0.05);
}

TEST_F(AbundanceSearch, TakesTheTimeOfEverythingItDoes) {
  test_.instrument.CreateSpecParser()->SearchTargetAbundance(1178.775421, 0.1);
  const Counters counted = test_.instrument.Counted();
  EXPECT_GE(counted.spectra, 4);
  // Each reading sets a voltage; so does the end.
  EXPECT_EQ(counted.setpoint_writes, counted.spectra + 1);
  EXPECT_NEAR(test_.clock->Seconds(),
              static_cast<double>(counted.spectra) * kSpectrumSec +
                  static_cast<double>(counted.setpoint_writes) * (kWriteSec + kSettlingSec),
              1e-9);
}

TEST_F(AbundanceSearch, TakesTheBandTimesTheScaleFactor) {
  description::InstrumentDescription description = CalibratedInstrument();
  description.acquisition.scale_factor = 3.0;
  TestInstrument test(description);
  test.instrument.CreateSpecParser()->SearchTargetAbundance(1178.775421, 0.1);
  const double abundance = test.instrument.CreateSpecParser()->GetPeakAttribute(
      PeakCalculationtype::abund, 1178.775421, 0.2);
  EXPECT_GT(abundance, 300'000.0);
  EXPECT_LT(abundance, 600'000.0);
}

TEST_F(AbundanceSearch, OfTheFirmwareIsSpedUpByItsFactor) {
  const double time_ns = FlightTimeNs(1790.662233);
  SearchByFirmware(time_ns, 0.0F);
  const std::int64_t normal = test_.instrument.Counted().spectra;
  SearchByFirmware(time_ns, 4.0F);
  EXPECT_LT(test_.instrument.Counted().spectra - normal, normal);
}

TEST_F(AbundanceSearch, OfTheFirmwareRefusesAWindowWithoutWidth) {
  const auto firmware = test_.instrument.GetFirmwareLibrary();
  const auto search = [&](float start_ns, float end_ns) {
    return ErrorNumberOf([&] {
      firmware->BinarySearchForTargetAb(22, 1e5F, 2e5F, 1.0F, 0.1F, 20.0F, 160.0F, 1, start_ns,
                                        end_ns);
    });
  };
  EXPECT_EQ(search(2e4F, 2e4F), 5);
  EXPECT_EQ(search(std::nanf(""), 2e4F), 5);
  try {
    firmware->BinarySearchForTargetAb(22, 1e5F, 2e5F, 1.0F, 0.1F, 20.0F, 160.0F, 1, 2e4F, 1.5e4F);
    FAIL() << "searched";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.description(),
              "Can't search for an abundance: no peak lies between 20000 and 15000 ns");
  }
  EXPECT_EQ(test_.instrument.Counted().setpoint_writes, 0);
}

TEST_F(AbundanceSearch, OfTheParserRefusesSettingsWithoutABand) {
  description::InstrumentDescription description = CalibratedInstrument();
  description.settings["Calibration"].erase("AIC_TargetMinAb");
  TestInstrument test(description);
  EXPECT_EQ(
      ErrorNumberOf([&] { test.instrument.CreateSpecParser()->SearchTargetAbundance(362.9, 0.1); }),
      5);
}

}  // namespace
}  // namespace tof::standin
