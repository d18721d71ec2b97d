#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "instruments/description/description_reader.h"
#include "instruments/spectra/input_file.h"

namespace tof::description {
namespace {

std::filesystem::path Examples() {
  return std::filesystem::path(TOF_SOURCE_DIR) / "examples";
}

TEST(Examples, BuiltInInstrumentIsTheVirtualExample) {
  const InstrumentDescription built_in = BuiltInDescription();
  const InstrumentDescription example = ReadDescription(Examples() / "virtual.xml");
  EXPECT_EQ(built_in.name, example.name);
  EXPECT_EQ(built_in.settings, example.settings);
}

// The masses that are looked for and the ions that the instrument makes are written down
// separately.
TEST(Examples, VirtualExampleLooksForTheIonsThatItMakes) {
  const InstrumentDescription description = BuiltInDescription();
  const auto& source = std::get<virtual_instrument::VirtualSourceParameters>(description.source);
  std::vector<testing::Matcher<double>> made;
  for (const virtual_instrument::Species& species : source.physics.calibrants) {
    made.push_back(testing::DoubleNear(species.mass_u, 1e-5));
  }
  EXPECT_THAT(CalibrantMasses(description), testing::ElementsAreArray(made));
}

// The example spells out every parameter; its numbers are those that a parameter has unless it is
// set.
TEST(Examples, VirtualExampleIsThePhysicsWithItsDefaults) {
  const InstrumentDescription description = BuiltInDescription();
  const auto& example =
      std::get<virtual_instrument::VirtualSourceParameters>(description.source).physics;
  const virtual_instrument::Parameters defaults;
  EXPECT_EQ(example.analyzer.a_sqrt_u_per_ns, defaults.analyzer.a_sqrt_u_per_ns);
  EXPECT_EQ(example.acquisition.window_end_us, defaults.acquisition.window_end_us);
  EXPECT_EQ(example.acquisition.pulses_per_spectrum, defaults.acquisition.pulses_per_spectrum);
  EXPECT_EQ(example.detector.gain_channels.size(), defaults.detector.gain_channels.size());
  EXPECT_EQ(example.rf_guide.adiabaticity_cutoff_width,
            defaults.rf_guide.adiabaticity_cutoff_width);
  ASSERT_EQ(example.calibrants.size(), defaults.calibrants.size());
  for (std::size_t i = 0; i < defaults.calibrants.size(); ++i) {
    EXPECT_EQ(example.calibrants[i].mass_u, defaults.calibrants[i].mass_u);
    EXPECT_EQ(example.calibrants[i].ions_per_pulse, defaults.calibrants[i].ions_per_pulse);
  }
  EXPECT_EQ(example.contaminants.size(), defaults.contaminants.size());
}

TEST(Examples, DocumentedDescriptionIsReadable) {
  const std::string page = spectra::ReadWholeFile(std::filesystem::path(TOF_SOURCE_DIR) /
                                                  "docs/instrument_description.md");
  const std::string fence = "```xml\n";
  const std::size_t start = page.find(fence);
  ASSERT_NE(start, std::string::npos);
  const std::size_t text = start + fence.size();
  const InstrumentDescription description =
      ParseDescription(page.substr(text, page.find("```", text) - text), "the documented example");
  EXPECT_EQ(CalibrantMasses(description).size(), 4u);
}

class RecordedExamples : public testing::TestWithParam<const char*> {
 protected:
  InstrumentDescription description_ =
      ReadDescription(Examples() / "recorded" / (std::string(GetParam()) + ".xml"));
};

TEST_P(RecordedExamples, HaveWhatACalibrationCannotDoWithout) {
  const auto& calibration = description_.settings.at("Calibration");
  EXPECT_GT(calibration.at("TargetAPercentError"), 0.0);
  EXPECT_EQ(calibration.at("TargetAPercentError"), calibration.at("TargetAPercentError_FPS"));
  // A negative start value of t0 needs a negative fraction, or the check of the result admits
  // nothing.
  const double t0 = std::stod(description_.flags.at("Calibration_t0ToUseToStartLookingforA_usec"));
  EXPECT_GT(calibration.at("Targett0PercentError") * t0, 0.0);
  EXPECT_GE(CalibrantMasses(description_).size(), 4u);
}

TEST_P(RecordedExamples, KeepAbundanceImmuneCalibrationOff) {
  EXPECT_NE(description_.flags.at(description_.aic_flag_key), "No");
  EXPECT_EQ(description_.flags.count("AIC_AlwaysRunOnly"), 0u);
}

INSTANTIATE_TEST_SUITE_P(Recorded, RecordedExamples,
                         testing::Values("ladder", "breath-ind1-1", "breath-ind1-2",
                                         "breath-ind1-3", "breath-single", "linear_tof"),
                         [](const testing::TestParamInfo<const char*>& example) {
                           std::string name = example.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace tof::description
