#include "instruments/standin/truth.h"

#include <gtest/gtest.h>

#include <cmath>

#include "instruments/masstime/mass_time_model.h"
#include "instruments/virtual/flight_time.h"
#include "instruments/virtual/truth.h"
#include "tests/instruments/spectra/scratch_file.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

namespace vi = virtual_instrument;

constexpr double kPulses = 10'000.0;
constexpr double kCountsPerIon[] = {250.0, 1'000.0};

// The built-in instrument, 3 ppm off its true law, without drift.
description::InstrumentDescription SomewhatOff() {
  description::InstrumentDescription description = description::BuiltInDescription();
  description.factory_coefficients = {0.00065 * (1.0 + 1.5e-6), 300.0};
  std::get<vi::VirtualSourceParameters>(description.source).physics.drift = {0.0, 0.0};
  return description;
}

double TimeOf(double mass) {
  return vi::FlightTimeNs(vi::Parameters(), mass, 0.0);
}

MeasuredMass Measured(double mass, double abundance) {
  return {mass, TimeOf(mass), abundance};
}

// Of so many recorded ions in the pulses of a spectrum.
double Lambda(double ions) {
  return -std::log(1.0 - ions / kPulses);
}

vi::ErrorFigures ErrorsOf(const description::InstrumentDescription& description, double lightest,
                          double heaviest, double lambda, double drift_ppm = 0.0) {
  const masstime::MassTimeModel model{
      description.factory_coefficients,
      {1e3 * description.acquisition.start_us, 1e3 * description.acquisition.end_us}};
  return vi::ErrorsAt(
      vi::Parameters(), [&](double time_ns) { return masstime::TimeToMass(model, time_ns); },
      vi::CheckMasses(lightest, heaviest, 200), lambda, drift_ppm);
}

void ExpectFigures(const TruthFigures& figures, const vi::ErrorFigures& expected) {
  EXPECT_NEAR(figures.rms_ppm, expected.rms_ppm, 1e-9);
  EXPECT_NEAR(figures.common_ppm, expected.common_ppm, 1e-9);
  EXPECT_NEAR(figures.mass_dependent_ppm, expected.mass_dependent_ppm, 1e-9);
  EXPECT_NEAR(figures.max_ppm, expected.max_ppm, 1e-9);
}

class TruthInChannel : public testing::TestWithParam<int> {
 protected:
  TruthInChannel() {
    description_.setpoints.at(vi::kGainChannelSetpoint).value =
        Variant(static_cast<std::int16_t>(GetParam()));
  }
  double Abundance(double ions) const {
    return ions * kCountsPerIon[static_cast<std::size_t>(GetParam() - 1)];
  }
  std::optional<Truth> Of(const std::vector<MeasuredMass>& measured, std::int64_t spectra = 10) {
    return TruthOf(TestInstrument(description_).instrument, measured, spectra, 0);
  }

  description::InstrumentDescription description_ = SomewhatOff();
};

TEST_P(TruthInChannel, IsThatOfTheIonsBehindTheAbundance) {
  const auto truth = Of({Measured(500.0, Abundance(400.0)), Measured(300.0, Abundance(800.0)),
                         Measured(1500.0, Abundance(600.0))});
  ASSERT_TRUE(truth);
  const double mean = (Lambda(400.0) + Lambda(800.0) + Lambda(600.0)) / 3.0;
  ExpectFigures(truth->at_calibration, ErrorsOf(description_, 300.0, 1500.0, mean));
  ExpectFigures(truth->weak, ErrorsOf(description_, 300.0, 1500.0, 0.0));
  EXPECT_NEAR(truth->weak.common_ppm, 3.0, 0.01);
  EXPECT_LT(truth->at_calibration.common_ppm, truth->weak.common_ppm - 0.2);
}

TEST_P(TruthInChannel, HasTheLimitOfAllIonsOfAllSpectra) {
  const auto truth =
      Of({Measured(300.0, Abundance(400.0)), Measured(1500.0, Abundance(800.0))}, 25);
  ASSERT_TRUE(truth);
  const std::vector<vi::CalibrantStatistics> statistics{{300.0, TimeOf(300.0), 25 * 400.0},
                                                        {1500.0, TimeOf(1500.0), 25 * 800.0}};
  EXPECT_NEAR(truth->limit_ppm,
              vi::StatisticalLimitPpm({}, statistics, vi::CheckMasses(300.0, 1500.0, 200)), 1e-9);
}

TEST_P(TruthInChannel, CoversTheBandOfTheSettings) {
  description_.acquisition.scale_factor = 2.0;
  description_.settings["Calibration"]["AIC_TargetMinAb"] = Abundance(200.0);
  description_.settings["Calibration"]["AIC_TargetMaxAb"] = Abundance(400.0);
  const auto truth = Of({Measured(300.0, Abundance(1.0)), Measured(1500.0, Abundance(1.0))});
  ASSERT_TRUE(truth);
  const masstime::MassTimeModel model{description_.factory_coefficients, {12e3, 72e3}};
  ExpectFigures(
      truth->in_band,
      vi::ErrorsInBand(
          vi::Parameters(), [&](double time_ns) { return masstime::TimeToMass(model, time_ns); },
          vi::CheckMasses(300.0, 1500.0, 200), Lambda(400.0), Lambda(800.0), 0.0));
}

// A peak with an ion in every pulse is taken for one that misses a pulse.
TEST_P(TruthInChannel, IsFiniteForAPeakInEveryPulse) {
  for (const double ions : {kPulses, 2.0 * kPulses}) {
    const auto truth = Of({Measured(300.0, Abundance(ions)), Measured(1500.0, Abundance(ions))});
    ASSERT_TRUE(truth);
    ExpectFigures(truth->at_calibration,
                  ErrorsOf(description_, 300.0, 1500.0, Lambda(kPulses - 1.0)));
  }
}

INSTANTIATE_TEST_SUITE_P(Gain, TruthInChannel, testing::Values(1, 2));

TEST(Truth, LeavesOutWhatWasNotMeasured) {
  TestInstrument test(SomewhatOff());
  const MeasuredMass without_time{200.0, std::nullopt, 100'000.0};
  const MeasuredMass without_abundance{1700.0, TimeOf(1700.0), std::nullopt};
  const MeasuredMass empty = Measured(1600.0, 0.0);
  const auto truth = TruthOf(test.instrument,
                             {without_time, Measured(300.0, 100'000.0), empty,
                              Measured(1500.0, 100'000.0), without_abundance},
                             10, 0);
  ASSERT_TRUE(truth);
  const std::vector<vi::CalibrantStatistics> statistics{{300.0, TimeOf(300.0), 4'000.0},
                                                        {1500.0, TimeOf(1500.0), 4'000.0}};
  EXPECT_NEAR(truth->limit_ppm,
              vi::StatisticalLimitPpm({}, statistics, vi::CheckMasses(300.0, 1500.0, 200)), 1e-9);
  // Those with an abundance count for its mean, found or not.
  ExpectFigures(truth->at_calibration,
                ErrorsOf(SomewhatOff(), 300.0, 1500.0, 0.75 * Lambda(400.0)));
}

TEST(Truth, IsNoneForFewerThanTwoMasses) {
  TestInstrument test(SomewhatOff());
  EXPECT_FALSE(TruthOf(test.instrument, {}, 10, 0));
  EXPECT_FALSE(TruthOf(test.instrument, {Measured(300.0, 1e5)}, 10, 0));
  EXPECT_FALSE(TruthOf(test.instrument, {Measured(300.0, 1e5), Measured(500.0, 0.0)}, 10, 0));
  EXPECT_TRUE(TruthOf(test.instrument, {Measured(300.0, 1e5), Measured(500.0, 1e5)}, 10, 0));
}

TEST(Truth, IsThatOfTheTimeInWhichTheSpectraWereTaken) {
  description::InstrumentDescription description = SomewhatOff();
  std::get<vi::VirtualSourceParameters>(description.source).physics.drift = {60.0, 0.0};
  TestInstrument test(description);
  const auto parser = test.instrument.CreateSpecParser();
  const Variant mass(BoundedArray<double>{498.901186});
  for (int i = 0; i < 4; ++i) parser->GetCalibrantPeakAttributes(mass, -1.0);
  const auto weak_error = [&](std::int64_t collected) {
    return TruthOf(test.instrument, {Measured(300.0, 1e5), Measured(1500.0, 1e5)}, 2, collected)
        ->weak.common_ppm;
  };
  // 1 ppm a second; the middles are at 0.5, 1.5, 2.5 and 3.5 s.
  EXPECT_NEAR(weak_error(1) - weak_error(0), 3.5, 1e-3);
  EXPECT_NEAR(weak_error(2) - weak_error(0), 3.0, 1e-3);
  EXPECT_NEAR(weak_error(4) - weak_error(0), 2.0, 1e-3);
}

TEST(Truth, IsNotKnownOfARecordedInstrument) {
  const spectra::ScratchFile file("15000 10\n15001 11\n", "_truth.txt");
  description::InstrumentDescription description = description::BuiltInDescription();
  description.source = recorded::RecordedFiles{{{file.Path()}}, 0.0, 1.0};
  TestInstrument test(description, {.data_folder = "/"});
  EXPECT_EQ(test.instrument.Virtual(), nullptr);
  EXPECT_FALSE(TruthOf(test.instrument, {Measured(300.0, 1e5), Measured(1500.0, 1e5)}, 10, 0));
}

}  // namespace
}  // namespace tof::standin
