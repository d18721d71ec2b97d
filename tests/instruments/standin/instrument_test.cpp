// An instrument as its description makes it.
#include "instruments/standin/instrument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "component/automation/error.h"
#include "tests/instruments/spectra/scratch_file.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

namespace vi = virtual_instrument;

constexpr std::int32_t kRf = 83;

// Without what is not ions: the highest bin is of whole ions.
description::InstrumentDescription Noiseless() {
  description::InstrumentDescription description = description::BuiltInDescription();
  auto& physics = std::get<vi::VirtualSourceParameters>(description.source).physics;
  physics.detector.baseline_counts = 0.0;
  physics.detector.electronic_noise_sd_counts = 0.0;
  physics.detector.gain_channels = {{7.0, 1e9}, {11.0, 1e9}};
  return description;
}

// The counts of an ion, as the spectra show them: what all bins are a multiple of.
int CountsPerIon(const description::InstrumentDescription& description) {
  TestInstrument test(description);
  const auto spectrum = test.instrument.State().source->Acquire();
  for (const int counts : {7, 11}) {
    const bool all =
        std::all_of(spectrum->intensity.begin(), spectrum->intensity.end(),
                    [counts](double bin) { return static_cast<int>(bin) % counts == 0; });
    if (all) return counts;
  }
  return 0;
}

TEST(StandInInstrument, BeginsInTheGainChannelOfItsSetpointElseInTheFirst) {
  description::InstrumentDescription description = Noiseless();
  auto& setpoint = description.setpoints[vi::kGainChannelSetpoint];
  setpoint = {ValueType::kInt16, Variant(std::int16_t{2})};
  EXPECT_EQ(CountsPerIon(description), 11);
  setpoint.value = Variant(std::int16_t{1});
  EXPECT_EQ(CountsPerIon(description), 7);
  description.setpoints.erase(vi::kGainChannelSetpoint);
  EXPECT_EQ(CountsPerIon(description), 7);
}

TEST(StandInInstrument, BeginsAtTheVoltageOfItsSetpointElseWithoutOne) {
  description::InstrumentDescription description = Noiseless();
  const auto volts = [&] {
    return TestInstrument(description).instrument.State().source->TrueValue(kRf);
  };
  description.setpoints.at(kRf).value = Variant(61.5);
  EXPECT_EQ(volts(), 61.5);
  description.setpoints.erase(kRf);
  EXPECT_EQ(volts(), 0.0);
}

TEST(StandInInstrument, TakesAnotherSeedThanItsOwnWhenItIsGivenOne) {
  const auto spectrum = [](std::uint64_t own, std::optional<std::uint64_t> given) {
    description::InstrumentDescription description = description::BuiltInDescription();
    std::get<vi::VirtualSourceParameters>(description.source).seed = own;
    InstrumentOptions options;
    options.seed = given;
    return TestInstrument(description, options).instrument.State().source->Acquire()->intensity;
  };
  EXPECT_EQ(spectrum(5, 6), spectrum(6, std::nullopt));
  EXPECT_EQ(spectrum(5, 6), spectrum(7, 6));
  EXPECT_NE(spectrum(5, std::nullopt), spectrum(6, std::nullopt));
}

struct Watcher : InstrumentObserver {
  void SpectrumTaken(double) override {}
  void SetpointWritten(std::int32_t id, double value, double) override {
    if (id == kRf) volts.push_back(value);
  }
  std::vector<double> volts;
};

// Of a peak that no voltage brings into the band: every coarse step is read.
class SearchedVoltages : public testing::Test {
 protected:
  SearchedVoltages() {
    description_.factory_coefficients = {0.00065, 300.0};
    description_.settings["Calibration"]["AIC_TargetMinAb"] = 1e11;
    description_.settings["Calibration"]["AIC_TargetMaxAb"] = 2e11;
  }
  std::vector<double> Of() {
    Watcher watcher;
    TestInstrument test(description_, {.observer = &watcher});
    test.instrument.CreateSpecParser()->SearchTargetAbundance(498.901186, 0.1);
    return watcher.volts;
  }

  description::InstrumentDescription description_ = description::BuiltInDescription();
};

TEST_F(SearchedVoltages, AreThoseOfTheSettings) {
  description_.settings["Calibration"]["AIC_RF_LowValue"] = 33.0;
  description_.settings["Calibration"]["AIC_RF_HighValue"] = 88.0;
  std::vector<double> volts = Of();
  ASSERT_EQ(volts.size(), 5U);
  volts.pop_back();  // what it ends with
  EXPECT_EQ(volts, (std::vector<double>{33.0, 53.0, 73.0, 88.0}));
}

TEST_F(SearchedVoltages, BeginAtZeroWithoutASetting) {
  description_.settings["Calibration"].erase("AIC_RF_LowValue");
  description_.settings["Calibration"]["AIC_RF_HighValue"] = 25.0;
  std::vector<double> volts = Of();
  ASSERT_EQ(volts.size(), 4U);
  volts.pop_back();
  EXPECT_EQ(volts, (std::vector<double>{0.0, 20.0, 25.0}));
}

TEST(StandInSearches, SayWhoHasNoneOnARecordedInstrument) {
  description::InstrumentDescription description = description::BuiltInDescription();
  const spectra::ScratchFile file("15000 10\n15001 11\n", "_search.txt");
  description.source = recorded::RecordedFiles{{{file.Path()}}, 0.0, 1.0};
  TestInstrument test(description, {.data_folder = "/"});
  const auto refusal = [](auto&& search) -> std::pair<std::int32_t, std::string> {
    try {
      search();
    } catch (const AutomationError& error) {
      return {error.number(), error.description()};
    }
    return {0, ""};
  };
  const std::string rest =
      " of this instrument has no search for a target abundance: its spectra depend on no setpoint";
  EXPECT_EQ(refusal([&] { test.instrument.CreateSpecParser()->SearchTargetAbundance(300.0, 0.1); }),
            std::pair(445, "The parser" + rest));
  EXPECT_EQ(refusal([&] {
              test.instrument.GetFirmwareLibrary()->BinarySearchForTargetAb(
                  22, 1e5F, 2e5F, 1.0F, 0.1F, 20.0F, 160.0F, 1, 1e4F, 2e4F);
            }),
            std::pair(445, "The firmware" + rest));
}

}  // namespace
}  // namespace tof::standin
