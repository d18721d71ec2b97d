// vorninstrument.InstrumentControl, called by name as scripts do.

#include <cmath>

#include "component/automation/convert.h"
#include "hosts/com/automation/safe_array.h"
#include "hosts/com/automation/variant_conversion.h"
#include "tests/com/registered/registered_world.h"

namespace tof::com {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr std::int32_t kPlannedFailure = 440;

OwnedVariant Long(std::int32_t value) {
  return OwnedVariant::Of(value);
}

class InstrumentControlObject : public RegisteredWorld {
 protected:
  // A traditional calibration, which takes little time.
  CalibrationResult CalibrateShortly() {
    return Calibrate({.masses = Masses(), .spectra = 2, .suppress_aic = true});
  }
  std::string Text(const char* property) {
    return ToText(FromVariant(control->GetProperty(property).get()));
  }
  std::vector<std::string> Files() {
    const Variant files = FromVariant(control->GetProperty("Files").get());
    std::vector<std::string> paths;
    for (const Variant& path : *files.As<Variant::Array>()) paths.push_back(ToText(path));
    return paths;
  }
  double TrueError(const char* figure, const CalibrationResult& result, OwnedVariant abundances) {
    return ToDouble(
        FromVariant(control
                        ->Call("TrueError", figure, ToVariant(BoundedArray<double>(Masses())),
                               ToVariant(BoundedArray<double>(result.times_ns)), 2, false,
                               std::move(abundances))
                        .get()));
  }
  DispatchObject SetpointTable() {
    DispatchObject dictionary = CreateDispatchObject("vorninstrument.DataDictionary");
    return {ObjectIn(dictionary.Call("GetSetpointTable").get()), "the setpoint table"};
  }
};

TEST_F(InstrumentControlObject, StartsWithTheBuiltInInstrument) {
  EXPECT_EQ(Text("Name"), "virtual TOF");
  EXPECT_EQ(Masses().size(), 10U);
  EXPECT_EQ(Number("Seed"), -1);
  EXPECT_EQ(Text("RealTime"), "False");
  EXPECT_EQ(Number("Spectra"), 0);
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(InstrumentControlObject, IsOneForAllObjectsOfTheProcess) {
  DispatchObject first = SetpointTable();
  DispatchObject second = SetpointTable();
  first.Call("SetSetpoint", 83, 5, 61.5);
  EXPECT_EQ(ToDouble(FromVariant(second.Call("GetSetpoint", 83).get())), 61.5);
  EXPECT_EQ(Number("SetpointWrites"), 1);
  EXPECT_EQ(Number("SetpointReads"), 1);
  DispatchObject other_control = CreateDispatchObject("vorninstrument.InstrumentControl");
  EXPECT_EQ(ToInt32(FromVariant(other_control.GetProperty("SetpointWrites").get())), 1);
}

TEST_F(InstrumentControlObject, LoadsADescriptionAndTakesBackTheOverrides) {
  control->PutProperty("Seed", Long(5));
  control->Call("OverrideMasses", ToVariant(BoundedArray<double>({100.0, 200.0}, 1)));
  EXPECT_THAT(Masses(), ElementsAre(100.0, 200.0));
  control->Call("LoadDescription", TOF_SOURCE_DIR "/examples/virtual.xml", "");
  EXPECT_EQ(Number("Seed"), -1);
  EXPECT_EQ(Masses().size(), 10U);
  EXPECT_EQ(Text("BaseFolder"), ".");
}

TEST_F(InstrumentControlObject, OverridesWhatTheCalibratorReads) {
  control->Call("OverrideSetting", "Calibration/UseThisPowerFlag=3");
  control->Call("OverrideFlag", "AIC_RunFastVersion=Yes");
  control->Call("OverrideSetpoint", "83=42.5");
  double power = 0.0;
  DispatchObject settings = CreateDispatchObject("vorninstrument.CalibSettings");
  settings.Call("GetValue", "Calibration", "UseThisPowerFlag", 0, OwnedVariant::ByRef(power));
  EXPECT_EQ(power, 3.0);
  DispatchObject flags = CreateDispatchObject("vorninstrument.TuneFlags");
  EXPECT_EQ(ToText(FromVariant(flags.Call("GetFlag", "AIC_RunFastVersion", -1).get())), "Yes");
  EXPECT_EQ(ToDouble(FromVariant(SetpointTable().Call("GetSetpoint", 83).get())), 42.5);
  DispatchObject paths = CreateDispatchObject("vorninstrument.InstrumentPaths");
  EXPECT_EQ(ToText(FromVariant(paths.Call("GetBaseFolder").get())), base_folder.string());
}

TEST_F(InstrumentControlObject, ObjectsKeepTheInstrumentThatTheyWereMadeFor) {
  DispatchObject before = SetpointTable();
  before.Call("SetSetpoint", 83, 5, 33.0);
  control->Call("OverrideSetpoint", "83=44");
  EXPECT_EQ(Number("SetpointWrites"), 0);
  EXPECT_EQ(ToDouble(FromVariant(before.Call("GetSetpoint", 83).get())), 33.0);
  EXPECT_EQ(ToDouble(FromVariant(SetpointTable().Call("GetSetpoint", 83).get())), 44.0);
}

TEST_F(InstrumentControlObject, GivesTheSameSpectraForTheSameSeedAndOthersForAnother) {
  const auto times_with_seed = [&](std::int32_t seed) {
    control->PutProperty("Seed", Long(seed));
    return CalibrateShortly().times_ns;
  };
  const auto times = times_with_seed(3);
  EXPECT_NE(times_with_seed(4), times);
  EXPECT_EQ(times_with_seed(3), times);
}

TEST_F(InstrumentControlObject, AbortsOnRequestAndAfterATime) {
  const auto aborted = ElementsAre(std::pair<LONG, std::string>(1, "User aborted"));
  control->Call("RequestAbort");
  EXPECT_THAT(CalibrateShortly().events, aborted);
  control->Call("WithdrawAbort");
  EXPECT_THAT(CalibrateShortly().events, IsEmpty());
  control->Call("AbortAfter", 1.5);
  EXPECT_THAT(CalibrateShortly().events, aborted);
  control->Call("WithdrawAbort");
  EXPECT_THAT(CalibrateShortly().events, IsEmpty());
}

TEST_F(InstrumentControlObject, MakesTheNextFitsBad) {
  control->Call("MakeFitsBad", 1);
  EXPECT_TRUE(CalibrateShortly().coefficients) << "the second fit is good";
  control->Call("MakeFitsBad", 2);
  const CalibrationResult result = CalibrateShortly();
  EXPECT_FALSE(result.coefficients);
  ASSERT_EQ(result.events.size(), 1U);
  RecordProperty("event", result.events[0].second);
}

TEST_F(InstrumentControlObject, FailsTheCallThatWasPlannedAndNoLaterOne) {
  CalibrateShortly();  // counts calls, before any plan
  control->Call("FailCall", "MassCalCoefficients.Calibrate", 1);
  const CalibrationResult failed = CalibrateShortly();
  ASSERT_EQ(failed.events.size(), 1U);
  EXPECT_EQ(failed.events[0].first, kPlannedFailure);
  EXPECT_THAT(failed.events[0].second, HasSubstr("MassCalCoefficients.Calibrate"));
  EXPECT_TRUE(CalibrateShortly().coefficients);
  control->Call("FailCall", "MassCalCoefficients.Calibrate", 1);
  control->Call("WithdrawFailures");
  EXPECT_TRUE(CalibrateShortly().coefficients);
}

TEST_F(InstrumentControlObject, CountsWhatACalibrationAsksFor) {
  ASSERT_TRUE(CalibrateShortly().coefficients);
  EXPECT_GE(Number("Spectra"), 2);
  EXPECT_GT(Number("SetpointReads"), 0);
  EXPECT_EQ(Calls("MassCalCoefficients.Calibrate"), 1);
  EXPECT_EQ(Calls("AcqController.EndAIC"), 0);
  const double seconds = ToDouble(FromVariant(control->GetProperty("InstrumentSeconds").get()));
  EXPECT_GE(seconds, 2.0);
  EXPECT_FALSE(std::filesystem::is_empty(base_folder / "Logfiles"));
}

TEST_F(InstrumentControlObject, ListsTheLogFilesThatTheInstrumentOpened) {
  DispatchObject files = CreateDispatchObject("vorninstrument.CalibLogFiles");
  DispatchObject stream(ObjectIn(files.Call("OpenLogFile", "AIC", "the header", "TXT").get()),
                        "the log file");
  stream.Call("WriteLine", "a line \xC3\xA4");
  stream.Call("Close");
  const std::vector<std::string> paths = Files();
  ASSERT_EQ(paths.size(), 1U);
  EXPECT_THAT(paths[0], HasSubstr("\\Logfiles\\AIC_"));
  const FileContents written = FilesIn(base_folder / "Logfiles");
  ASSERT_EQ(written.size(), 1U);
  EXPECT_EQ(written.begin()->second, "the header\r\na line \xE4\r\n");
}

TEST_F(InstrumentControlObject, TakesAFolderWithAnyLettersInItsName) {
  const std::filesystem::path folder = base_folder / L"Me\u00DFwerte \u03A9";
  control->PutProperty("BaseFolder", OwnedVariant::Of(Utf8(folder.wstring()).c_str()));
  EXPECT_TRUE(CalibrateShortly().coefficients);
  EXPECT_EQ(CanUnloadCalibrator(), S_OK);  // which closes its log
  EXPECT_EQ(FilesIn(folder / "Logfiles").size(), 3U);
}

TEST_F(InstrumentControlObject, SaysWhichFolderCanNotBeMade) {
  control->PutProperty("BaseFolder", OwnedVariant::Of("?:\\nowhere"));
  try {
    CreateDispatchObject("vorninstrument.DataDictionary");
    FAIL() << "it was created";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 5);
    EXPECT_THAT(error.description(), HasSubstr("nowhere\\Logfiles"));
  }
}

TEST_F(InstrumentControlObject, TellsTheTrueErrorsOfAVirtualInstrument) {
  const CalibrationResult result = CalibrateShortly();
  ASSERT_TRUE(result.coefficients);
  const double rms = TrueError("rms_ppm", result, {});
  EXPECT_GT(rms, 0.0);
  EXPECT_LT(rms, 100.0);
  EXPECT_EQ(TrueError("in_band.rms_ppm", result, {}), rms);
  EXPECT_GE(TrueError("max_ppm", result, {}), rms);
  const auto abundances = [&] {
    return ToVariant(BoundedArray<double>(std::vector<double>(Masses().size(), 150000.0)));
  };
  EXPECT_GT(TrueError("at_calibration.rms_ppm", result, abundances()), 0.0);
  EXPECT_GT(TrueError("limit_ppm", result, abundances()), 0.0);
  EXPECT_EQ(TrueError("rms_ppm", result, abundances()), rms);
}

TEST_F(InstrumentControlObject, SaysWhyItCanNotTellATrueError) {
  const CalibrationResult result = CalibrateShortly();
  const auto masses = [&] { return ToVariant(BoundedArray<double>(Masses())); };
  const auto times = [&] { return ToVariant(BoundedArray<double>(result.times_ns)); };
  const auto refusal = [&](const char* figure) {
    return ErrorOf("TrueError", figure, masses(), times(), 2, false, OwnedVariant());
  };
  EXPECT_THAT(refusal("limit_ppm").description(), HasSubstr("needs the abundances"));
  EXPECT_THAT(refusal("median_ppm").description(), HasSubstr("no true error \"median_ppm\""));
  const AutomationError two_times =
      ErrorOf("TrueError", "rms_ppm", masses(), ToVariant(BoundedArray<double>({1.0, 2.0})), 2,
              false, OwnedVariant());
  EXPECT_EQ(two_times.number(), 5);
  EXPECT_THAT(two_times.description(), HasSubstr("2 times for 10 masses"));
}

TEST_F(InstrumentControlObject, HasNoTruthOfARecordedInstrument) {
  const std::filesystem::path data = std::filesystem::path(TOF_SHARED_DATA) / "ladder";
  if (!std::filesystem::exists(data)) GTEST_SKIP() << "the shared spectra are not on this machine";
  LoadExample("ladder", data);
  EXPECT_EQ(ErrorOf("TrueError", "rms_ppm", ToVariant(BoundedArray<double>({1.0, 2.0})),
                    ToVariant(BoundedArray<double>({1.0, 2.0})), 1, false, OwnedVariant())
                .number(),
            445);
}

// What is refused, and by which words the caller learns what would do.
struct Refusal {
  const char* name;
  const char* method;
  std::vector<Variant> arguments;
  const char* text;
};

void PrintTo(const Refusal& refusal, std::ostream* out) {
  *out << refusal.name;
}

const std::vector<Refusal> kRefusals = {
    {"NoSuchFile", "LoadDescription", {"no_such.xml", ""}, "no_such.xml"},
    {"NoDescription", "LoadDescription", {TOF_SOURCE_DIR "/README.md", ""}, "well-formed document"},
    {"NoDataFolder",
     "LoadDescription",
     {TOF_SOURCE_DIR "/examples/recorded/ladder.xml", "no_such_folder"},
     "no_such_folder"},
    {"SettingOfNoKind", "OverrideSetting", {"Calibration/Nonsense=1"}, "unknown setting"},
    {"SettingWithoutValue", "OverrideSetting", {"Calibration"}, "Section/Key=Value"},
    {"SettingThatIsNoNumber", "OverrideSetting", {"Calibration/AIC_RF_Step=two"}, "a number"},
    {"FlagOfNoKind", "OverrideFlag", {"Nonsense=Yes"}, "unknown flag"},
    {"SetpointOfNoKind", "OverrideSetpoint", {"9999=1"}, "unknown setpoint"},
    {"SetpointOfAnotherType", "OverrideSetpoint", {"83=high"}, "\"high\""},
    {"NegativeMass", "OverrideMasses", {Variant::DoubleArray({-1.0})}, "finite, positive masses"},
    {"NoMasses", "OverrideMasses", {std::int32_t{5}}, "Type mismatch"},
    {"UnknownOperation", "FailCall", {"SpecParser.Guess", std::int32_t{1}}, "SpecParser.FindPeaks"},
    {"CallZero", "FailCall", {"SpecParser.FindPeaks", std::int32_t{0}}, "1 or more"},
    {"CountOfUnknownOperation", "Calls", {"Guess"}, "SpecParser.FindPeaks"},
    {"NegativeFits", "MakeFitsBad", {std::int32_t{-1}}, "0 or more"},
    {"AbortInThePast", "AbortAfter", {-1.0}, "0 or more"},
    {"AbortAtNoTime", "AbortAfter", {std::nan("")}, "0 or more"},
};

class ControlRefusal : public InstrumentControlObject,
                       public ::testing::WithParamInterface<Refusal> {};

TEST_P(ControlRefusal, IsAnErrorThatSaysWhatIsExpectedAndChangesNothing) {
  DispatchObject table = SetpointTable();
  table.Call("SetSetpoint", 83, 5, 33.0);
  std::vector<OwnedVariant> arguments;
  for (const Variant& argument : GetParam().arguments) arguments.push_back(ToVariant(argument));
  try {
    control->CallWith(GetParam().method, std::move(arguments));
    FAIL() << "it was taken";
  } catch (const AutomationError& error) {
    EXPECT_THAT(error.description(), HasSubstr(GetParam().text));
    EXPECT_EQ(error.source(), "vorninstrument.InstrumentControl");
  }
  EXPECT_EQ(Number("SetpointWrites"), 1) << "the instrument was made anew";
}

INSTANTIATE_TEST_SUITE_P(Inputs, ControlRefusal, ::testing::ValuesIn(kRefusals),
                         [](const auto& refusal) { return std::string(refusal.param.name); });

TEST_F(InstrumentControlObject, RefusesASeedBelowMinusOne) {
  try {
    control->PutProperty("Seed", Long(-2));
    FAIL() << "it was taken";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 5);
  }
  control->PutProperty("Seed", Long(-1));
}

TEST_F(InstrumentControlObject, RunsInRealTimeWhenItIsTold) {
  control->PutProperty("RealTime", OwnedVariant::Of(true));
  EXPECT_EQ(Text("RealTime"), "True");
  const auto seconds = [&] {
    return ToDouble(FromVariant(control->GetProperty("InstrumentSeconds").get()));
  };
  // It runs by itself; in instrument time this would never end.
  const double before = seconds();
  while (seconds() == before) {
  }
  EXPECT_GT(seconds(), before);
}

}  // namespace
}  // namespace tof::com
