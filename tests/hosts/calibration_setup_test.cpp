#include "hosts/cli/calibration_setup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "instruments/description/description_reader.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {
namespace {

using description::InstrumentDescription;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// With one list of calibrants, for the value 0 of setpoint 117.
InstrumentDescription WithCalibrants(const std::vector<double>& masses) {
  InstrumentDescription description = description::BuiltInDescription();
  description.name = "bench";
  description.calibrants = {{0, masses}};
  return description;
}

std::string RefusalOf(const InstrumentDescription& description) {
  try {
    ExpectedMasses({}, description);
    return "none";
  } catch (const spectra::InputError& error) {
    return error.what();
  }
}

TEST(ExpectedMasses, AreThoseOfTheCommandLineElseTheInstruments) {
  CalibrateOptions options;
  EXPECT_THAT(ExpectedMasses(options, WithCalibrants({91.0, 159.0})), ElementsAre(91.0, 159.0));
  options.masses = {200.5};
  EXPECT_THAT(ExpectedMasses(options, WithCalibrants({91.0, 159.0})), ElementsAre(200.5));
  EXPECT_THAT(ExpectedMasses(options, WithCalibrants({})), ElementsAre(200.5));
}

TEST(ExpectedMasses, AreAskedForWhereTheInstrumentHasNone) {
  const std::string refusal =
      "bench: found no calibrants for the present value of setpoint 117, expected a list of "
      "calibrants, or --masses";
  EXPECT_EQ(RefusalOf(WithCalibrants({})), refusal);
  InstrumentDescription description = WithCalibrants({91.0});
  description.setpoints.at(117).value = Variant(std::int32_t{1});
  EXPECT_EQ(RefusalOf(description), refusal);
}

TEST(ExpectedMasses, OfTheInstrumentAreFiniteAndPositive) {
  EXPECT_EQ(RefusalOf(WithCalibrants({91.0, 0.0})),
            "bench: found the calibrant 0.000000, expected finite, positive masses");
  EXPECT_EQ(RefusalOf(WithCalibrants({-2.5, 91.0})),
            "bench: found the calibrant -2.500000, expected finite, positive masses");
  EXPECT_EQ(RefusalOf(WithCalibrants({std::numeric_limits<double>::infinity()})),
            "bench: found the calibrant inf, expected finite, positive masses");
}

TEST(DescriptionFor, IsTheBuiltInInstrumentWithTheOverrides) {
  InstrumentChoice choice;
  choice.settings = {"Calibration/AIC_RF_Step=2.5"};
  choice.flags = {"AIC_RunFastVersion=Yes"};
  choice.setpoints = {"83=61.5"};
  choice.base_folder = "elsewhere";
  const InstrumentDescription description = DescriptionFor(choice);
  EXPECT_EQ(description.settings.at("Calibration").at("AIC_RF_Step"), 2.5);
  EXPECT_EQ(description.flags.at("AIC_RunFastVersion"), "Yes");
  EXPECT_EQ(*description.setpoints.at(83).value.As<double>(), 61.5);
  EXPECT_EQ(description.base_folder, "elsewhere");
  EXPECT_EQ(DescriptionFor({}).base_folder, description::BuiltInDescription().base_folder);
}

TEST(InputFiles, AreTheDescriptionAndTheSpectra) {
  InstrumentDescription description = description::BuiltInDescription();
  InstrumentChoice choice;
  EXPECT_THAT(InputFiles(choice, description), IsEmpty());
  choice.instrument = "bench.xml";
  choice.data_folder = "data";
  description.source = recorded::RecordedFiles{{{"a.txt"}, {"/b.txt"}}, 0.0, 1.0};
  EXPECT_THAT(InputFiles(choice, description), ElementsAre("bench.xml", "data/a.txt", "/b.txt"));
}

}  // namespace
}  // namespace tof::cli
