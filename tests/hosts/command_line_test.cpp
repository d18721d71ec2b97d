#include "hosts/cli/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "instruments/spectra/input_error.h"

namespace tof::cli {
namespace {

using spectra::InputError;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

Command Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "tofcal");
  return ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

CalibrateOptions ParseCalibrate(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "calibrate");
  return std::get<CalibrateOptions>(Parse(arguments));
}

FitOptions ParseFit(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "fit");
  return std::get<FitOptions>(Parse(arguments));
}

TEST(CommandLine, LeavesEverythingToTheInstrumentByDefault) {
  const CalibrateOptions options = ParseCalibrate({});
  EXPECT_EQ(options.instrument, "");
  EXPECT_FALSE(options.spectra);
  EXPECT_THAT(options.masses, IsEmpty());
  EXPECT_FALSE(options.trad_weighting);
  EXPECT_FALSE(options.peak_window);
  EXPECT_FALSE(options.seed);
  EXPECT_FALSE(options.base_folder);
  EXPECT_FALSE(options.suppress_aic);
  EXPECT_FALSE(options.manual);
  EXPECT_FALSE(options.real_time);
  EXPECT_FALSE(options.abort_after_seconds);
  EXPECT_FALSE(options.fault);
}

TEST(CommandLine, TakesEveryOptionOfACalibration) {
  const CalibrateOptions options = ParseCalibrate({"--instrument",
                                                   "a.xml",
                                                   "--data",
                                                   "spectra",
                                                   "--spectra",
                                                   "32767",
                                                   "--masses",
                                                   "91.5, 1e2",
                                                   "--suppress-aic",
                                                   "--manual",
                                                   "--trad-weighting",
                                                   "0",
                                                   "--peak-window",
                                                   "0.2",
                                                   "--base-folder",
                                                   "out",
                                                   "--trace",
                                                   "t.txt",
                                                   "--json",
                                                   "-",
                                                   "--real-time",
                                                   "--seed",
                                                   "7",
                                                   "--abort-after",
                                                   "1.5",
                                                   "--fail",
                                                   "SpecParser.FindPeaks:2"});
  EXPECT_EQ(options.instrument, "a.xml");
  EXPECT_EQ(options.data_folder, "spectra");
  EXPECT_EQ(options.spectra, 32767);
  EXPECT_THAT(options.masses, ElementsAre(91.5, 100.0));
  EXPECT_TRUE(options.suppress_aic);
  EXPECT_TRUE(options.manual);
  EXPECT_EQ(options.trad_weighting, 0.0);
  EXPECT_EQ(options.peak_window, 0.2);
  EXPECT_EQ(options.base_folder, "out");
  EXPECT_EQ(options.trace_file, "t.txt");
  EXPECT_EQ(options.json_file, "-");
  EXPECT_TRUE(options.real_time);
  EXPECT_EQ(options.seed, 7u);
  EXPECT_EQ(options.abort_after_seconds, 1.5);
  ASSERT_TRUE(options.fault);
  EXPECT_EQ(options.fault->operation, "SpecParser.FindPeaks");
  EXPECT_EQ(options.fault->nth, 2);
}

TEST(CommandLine, RecordsDrawsATimelineAndReplays) {
  const CalibrateOptions plain = ParseCalibrate({});
  EXPECT_EQ(plain.record_file, "");
  EXPECT_EQ(plain.timeline_file, "");
  const CalibrateOptions options = ParseCalibrate({"--record", "r.jsonl", "--timeline", "t.json"});
  EXPECT_EQ(options.record_file, "r.jsonl");
  EXPECT_EQ(options.timeline_file, "t.json");
  const auto replay = std::get<ReplayOptions>(Parse({"replay", "r.jsonl", "--json", "-"}));
  EXPECT_EQ(replay.recording, "r.jsonl");
  EXPECT_EQ(replay.json_file, "-");
}

TEST(CommandLine, KeepsRepeatedOverridesInTheirOrder) {
  const CalibrateOptions options =
      ParseCalibrate({"--set", "Calibration/A=1", "--flag", "F=Yes", "--set", "Calibration/B=-2",
                      "--setpoint", "149=1", "--setpoint", "69=0.5"});
  EXPECT_THAT(options.settings, ElementsAre("Calibration/A=1", "Calibration/B=-2"));
  EXPECT_THAT(options.flags, ElementsAre("F=Yes"));
  EXPECT_THAT(options.setpoints, ElementsAre("149=1", "69=0.5"));
}

TEST(CommandLine, ChecksAnInstrumentThatIsChosenAsForACalibration) {
  const auto options = std::get<CheckOptions>(Parse({"check-instrument",
                                                     "--instrument",
                                                     "a.xml",
                                                     "--data",
                                                     "spectra",
                                                     "--masses",
                                                     "91,159",
                                                     "--set",
                                                     "Calibration/A=1",
                                                     "--flag",
                                                     "F=Yes",
                                                     "--setpoint",
                                                     "149=1",
                                                     "--base-folder",
                                                     "out",
                                                     "--seed",
                                                     "7",
                                                     "--fail",
                                                     "SpecParser.FindPeaks:2",
                                                     "--json",
                                                     "-"}));
  EXPECT_EQ(options.instrument, "a.xml");
  EXPECT_EQ(options.data_folder, "spectra");
  EXPECT_THAT(options.masses, ElementsAre(91.0, 159.0));
  EXPECT_THAT(options.settings, ElementsAre("Calibration/A=1"));
  EXPECT_THAT(options.flags, ElementsAre("F=Yes"));
  EXPECT_THAT(options.setpoints, ElementsAre("149=1"));
  EXPECT_EQ(options.base_folder, "out");
  EXPECT_EQ(options.seed, 7u);
  ASSERT_TRUE(options.fault);
  EXPECT_EQ(options.fault->nth, 2);
  EXPECT_EQ(options.json_file, "-");
}

TEST(CommandLine, ShowsHelpAndVersion) {
  EXPECT_THAT(std::get<TextRequest>(Parse({"--version"})).text, HasSubstr("tofcal "));
  EXPECT_THAT(std::get<TextRequest>(Parse({"--help"})).text, HasSubstr("calibrate"));
  EXPECT_THAT(std::get<TextRequest>(Parse({"calibrate", "--help"})).text,
              HasSubstr("--base-folder DIR"));
  EXPECT_THAT(std::get<TextRequest>(Parse({"fit", "--help"})).text, HasSubstr("--terms N|auto"));
}

TEST(CommandLine, FitTakesPairsOrASpectrum) {
  EXPECT_EQ(ParseFit({"pairs.txt"}).pairs_file, "pairs.txt");
  const FitOptions options =
      ParseFit({"--masses", "m.txt", "--spectrum", "s.mzML", "--A", "0.00065", "--t0", "-43.6",
                "--terms", "3", "--peak-window", "0.5"});
  EXPECT_EQ(options.masses, "m.txt");
  EXPECT_EQ(options.spectrum, "s.mzML");
  EXPECT_EQ(options.a_per_ns, 0.00065);
  EXPECT_EQ(options.t0_ns, -43.6);
  EXPECT_EQ(options.terms, 3);
  EXPECT_EQ(options.peak_window, 0.5);
  EXPECT_FALSE(ParseFit({"pairs.txt", "--terms", "auto"}).terms);
}

struct Refusal {
  const char* name;
  std::vector<const char*> arguments;
  const char* message;
};

void PrintTo(const Refusal& row, std::ostream* out) {
  *out << row.name;
}

class CommandLineRefusal : public ::testing::TestWithParam<Refusal> {};

TEST_P(CommandLineRefusal, SaysWhatAndWhatWasExpected) {
  try {
    Parse(GetParam().arguments);
    FAIL() << "accepted";
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), HasSubstr(GetParam().message));
  } catch (const InputError& error) {
    EXPECT_THAT(error.what(), HasSubstr(GetParam().message));
  }
}

constexpr const char* kSpectraRange = "expected a whole number from 1 to 32767";

INSTANTIATE_TEST_SUITE_P(
    Rows, CommandLineRefusal,
    ::testing::Values(
        Refusal{"NothingToReplay", {"replay"}, "replay: a recording is missing"},
        Refusal{"NoVerb",
                {},
                "expected calibrate, replay, check-instrument, fit, report, apply or drift"},
        Refusal{"AnotherVerb", {"measure"}, "not expected: measure"},
        Refusal{"CheckWithSpectra", {"check-instrument", "--spectra", "3"}, "--spectra"},
        Refusal{"CheckOfMassZero", {"check-instrument", "--masses", "0"}, "found \"0\""},
        Refusal{"UnknownOption", {"calibrate", "--spectrum", "3"}, "--spectrum"},
        Refusal{"MissingValue", {"calibrate", "--spectra"}, "--spectra"},
        Refusal{"NoSpectra", {"calibrate", "--spectra", "0"}, kSpectraRange},
        Refusal{"NegativeSpectra", {"calibrate", "--spectra", "-1"}, "found \"-1\""},
        Refusal{"TooManySpectra", {"calibrate", "--spectra", "32768"}, kSpectraRange},
        Refusal{"FractionOfASpectrum", {"calibrate", "--spectra", "1.5"}, kSpectraRange},
        Refusal{"NoMasses", {"calibrate", "--masses", ""}, "--masses: found no masses"},
        Refusal{"MassMissing", {"calibrate", "--masses", "91,,159"}, "--masses: found \"\""},
        Refusal{"MassNotANumber", {"calibrate", "--masses", "91,x"}, "found \"x\""},
        Refusal{"MassNaN", {"calibrate", "--masses", "91,NaN"}, "found \"NaN\""},
        Refusal{"MassInfinite", {"calibrate", "--masses", "inf"}, "expected a finite, positive"},
        Refusal{"MassZero", {"calibrate", "--masses", "0,91"}, "found \"0\""},
        Refusal{"MassNegative", {"calibrate", "--masses", "-91"}, "found \"-91\""},
        Refusal{"WindowZero", {"calibrate", "--peak-window", "0"}, "expected a positive number"},
        Refusal{
            "WeightingText", {"calibrate", "--trad-weighting", "a"}, "expected a finite number"},
        Refusal{"SeedNegative", {"calibrate", "--seed", "-1"}, "--seed: found \"-1\""},
        Refusal{"AbortInThePast", {"calibrate", "--abort-after", "-1"}, "expected 0 or more"},
        Refusal{"FaultWithoutCount", {"calibrate", "--fail", "A.B"}, "Collaborator.Operation:N"},
        Refusal{"FaultWithoutOperation", {"calibrate", "--fail", "A:1"}, "Collaborator.Operation"},
        Refusal{"FaultOfCallZero", {"calibrate", "--fail", "A.B:0"}, "whole number from 1"},
        Refusal{"FitWithoutInput", {"fit"}, "either a file"},
        Refusal{"FitWithBoth", {"fit", "p.txt", "--spectrum", "s.txt"}, "either a file"},
        Refusal{"FitPairsWithMasses", {"fit", "p.txt", "--masses", "1"}, "go with --spectrum"},
        Refusal{"FitSpectrumAlone", {"fit", "--spectrum", "s"}, "needs --masses"},
        Refusal{"FitNoStart", {"fit", "--spectrum", "s", "--masses", "1"}, "needs --A and --t0"},
        Refusal{"FitTooManyTerms", {"fit", "p.txt", "--terms", "7"}, "number from 0 to 6"},
        Refusal{"FitUnknownWeighting", {"fit", "p.txt", "--weighting", "3"}, "from 0 to 2"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tof::cli
