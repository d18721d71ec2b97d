#include "instruments/virtual/virtual_source.h"

#include <gtest/gtest.h>

#include <numeric>
#include <stdexcept>

#include "component/automation/error.h"
#include "tests/component/error_number_of.h"
#include "tests/instruments/counting_clock.h"

namespace tof::virtual_instrument {
namespace {

constexpr std::int32_t kRf = 83;

class VirtualSourceTest : public testing::Test {
 protected:
  VirtualSourceTest() {
    parameters_.rf_setpoint = kRf;
    parameters_.setpoint_write_sec = 0.02;
  }
  VirtualSource Source() { return VirtualSource(parameters_, {75.0, 1.0}, clock_); }

  static double Sum(const spectra::Spectrum& spectrum) {
    return std::accumulate(spectrum.intensity.begin(), spectrum.intensity.end(), 0.0);
  }

  VirtualSourceParameters parameters_;
  std::shared_ptr<spectra::CountingClock> clock_ = std::make_shared<spectra::CountingClock>();
};

TEST_F(VirtualSourceTest, TakesTheTimeOfASpectrumAndOfAWrite) {
  VirtualSource source = Source();
  source.Acquire();
  EXPECT_DOUBLE_EQ(clock_->Seconds(), 1.0);
  source.SetpointWritten(1, 0.0);
  EXPECT_DOUBLE_EQ(clock_->Seconds(), 1.02);
  source.Newest();
  EXPECT_DOUBLE_EQ(clock_->Seconds(), 1.02);
}

TEST_F(VirtualSourceTest, GivesAnotherNewestSpectrumEachTime) {
  VirtualSource source = Source();
  EXPECT_NE(source.Newest()->intensity, source.Newest()->intensity);
}

TEST_F(VirtualSourceTest, SettlesAfterAWrite) {
  VirtualSource source = Source();
  source.SetpointWritten(kRf, 25.0);
  EXPECT_DOUBLE_EQ(*source.TrueValue(kRf), 75.0);
  clock_->Advance(0.25);  // one time constant
  EXPECT_NEAR(*source.TrueValue(kRf), 25.0 + 50.0 / 2.718281828, 1e-6);
  clock_->Advance(10.0);
  EXPECT_NEAR(*source.TrueValue(kRf), 25.0, 1e-9);
  EXPECT_EQ(source.TrueValue(kGainChannelSetpoint), std::nullopt);
}

TEST_F(VirtualSourceTest, ShowsTheVoltageInItsSpectra) {
  VirtualSource source = Source();
  const double at_75_volts = Sum(*source.Acquire());
  source.SetpointWritten(kRf, 1.0);  // hardly a well: hardly an ion
  clock_->Advance(10.0);
  EXPECT_LT(Sum(*source.Acquire()), 0.9 * at_75_volts);
}

TEST_F(VirtualSourceTest, SwitchesTheGain) {
  parameters_.physics.detector.baseline_counts = 0.0;
  parameters_.physics.detector.electronic_noise_sd_counts = 0.0;
  VirtualSource source = Source();
  const double low = Sum(*source.Acquire());
  source.SetpointWritten(kGainChannelSetpoint, 2.0);
  EXPECT_NEAR(Sum(*source.Acquire()) / low, 4.0, 0.5);
}

TEST_F(VirtualSourceTest, TakesAnyGainChannelButNoSpectrumWithAWrongOne) {
  VirtualSource source = Source();
  source.SetpointWritten(kGainChannelSetpoint, 0.0);
  EXPECT_EQ(ErrorNumberOf([&] { source.Acquire(); }), 5);
  EXPECT_DOUBLE_EQ(clock_->Seconds(), 0.02);
  source.SetpointWritten(kGainChannelSetpoint, 1.0);
  EXPECT_NO_THROW(source.Acquire());
}

TEST_F(VirtualSourceTest, RemembersTheMeanDriftOfWhatItAcquired) {
  parameters_.physics.drift = {60.0, 0.0};  // 1 ppm a second
  VirtualSource source = Source();
  EXPECT_EQ(source.MeanDriftPpm(3), 0.0);
  for (int i = 0; i < 3; ++i) source.Acquire();
  EXPECT_NEAR(source.MeanDriftPpm(3), 1.5, 1e-9);  // middles at 0.5, 1.5 and 2.5 s
  EXPECT_NEAR(source.MeanDriftPpm(2), 2.0, 1e-9);
  EXPECT_NEAR(source.MeanDriftPpm(4), 1.5, 1e-9);
}

TEST_F(VirtualSourceTest, RefusesAnImpossibleInstrument) {
  parameters_.physics.acquisition.bin_ns = -1.0;
  EXPECT_THROW(Source(), std::invalid_argument);
}

}  // namespace
}  // namespace tof::virtual_instrument
