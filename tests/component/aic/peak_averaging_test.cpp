#include "component/aic/peak_averaging.h"

#include <cmath>
#include <limits>

#include "component/acquisition/times_array.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::AicLogAllowed;
using fakes::AicLogAsked;
using fakes::Calls;
using fakes::InOrder;
using fakes::Repeated;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr const char* kReport = "D:\\Data\\Logfiles\\TuneReportCalibData.txt";
constexpr const char* kReportBytes = "125.1, 260.3, 488\r\n1, 2, 3\r\n-0.25, 0, 0.25\r\n";
const Calls kTraceFlag = {"TuneFlags.GetFlag(TraceAICPeakAttributes,-1)"};
const Calls kReportWritten = {"Host.CreateFileSystem",
                              "Create.InstrumentPaths",
                              "InstrumentPaths.GetBaseFolder",
                              "FileSystem.CreateTextFile(TuneReportCalibData.txt)",
                              "TextStream.WriteLine(TuneReportCalibData.txt)",
                              "TextStream.WriteLine(TuneReportCalibData.txt)",
                              "TextStream.WriteLine(TuneReportCalibData.txt)",
                              "TextStream.Close(TuneReportCalibData.txt)"};

// Three masses with two measurements each, whose means are short numbers.
class AveragingThePeakAttributes : public fakes::CalibrationFixture {
 protected:
  AveragingThePeakAttributes() { StartAfresh(); }

  void StartAfresh() {
    Size(2);
    Measure(0, {125.0, 125.2}, {0.5, 1.5}, {-0.5, 0.0}, {100.5, 100.5}, {1000.0, 3000.0});
    Measure(1, {260.25, 260.35}, {1.5, 2.5}, {-0.5, 0.5}, {199.0, 201.0}, {5.0, 5.0});
    Measure(2, {487.5, 488.5}, {2.5, 3.5}, {0.25, 0.25}, {400.5, 401.5}, {0.0, 1.0});
    host.trace->Forget();
    host.files.erase(kReport);
    journal.Clear();
  }
  void Size(std::int32_t measurements) {
    InitializeTimesArray(measurements, expected_masses, peaks);
  }
  void Measure(std::int32_t m, const std::vector<double>& flight_times,
               const std::vector<double>& attributes48, const std::vector<double>& attributes32,
               const std::vector<double>& assigned_masses, const std::vector<double>& abundances) {
    for (std::size_t k = 0; k < flight_times.size(); ++k) {
      PeakAttribs& row0 = peaks(m).SpectrumAttribs(static_cast<std::int32_t>(k), 0);
      row0 = {.time = flight_times[k], .abundance = -1.0, .attribute48 = attributes48[k]};
      PeakAttribs& row1 = peaks(m).SpectrumAttribs(static_cast<std::int32_t>(k), 1);
      row1 = {.unused0 = -1.0,
              .time = assigned_masses[k],
              .attribute32 = attributes32[k],
              .abundance = abundances[k],
              .attribute48 = -1.0};
    }
  }
  void Average() { AverageThePeakAttributes(parts, host, aic_log, expected_masses, peaks); }
  void OpenLog() {
    instrument.flags[instrument.flag_key] = "No";
    instrument.flags["AICLoggingEnabled"] = "3000";
    OpenAicLog(parts, host, aic_log);
    journal.Clear();
  }
  const std::string& ReportBytes() const { return host.files.at(kReport).bytes; }
  bool ReportIsThere() const { return host.files.count(kReport) != 0; }

  Instrument parts = Collaborators();
  AicLog aic_log;
  Variant expected_masses = Variant::DoubleArray({100.0, 200.0, 400.0});
  PeakTable peaks;
};

TEST_F(AveragingThePeakAttributes, TakesTheMeanOfFiveFieldsAndOfNoOther) {
  Average();
  EXPECT_EQ(peaks(0).AveragedAttribs(0), (PeakAttribs{.time = 125.1, .attribute48 = 1.0}));
  EXPECT_EQ(peaks(0).AveragedAttribs(1),
            (PeakAttribs{.time = 100.5, .attribute32 = -0.25, .abundance = 2000.0}));
  EXPECT_DOUBLE_EQ(peaks(1).AveragedAttribs(0).time, 260.3);
  EXPECT_EQ(peaks(2).AveragedAttribs(1),
            (PeakAttribs{.time = 401.0, .attribute32 = 0.25, .abundance = 0.5}));
}

TEST_F(AveragingThePeakAttributes, WritesThreeLinesForTheTuneReport) {
  Average();
  EXPECT_EQ(ReportBytes(), kReportBytes);
  EXPECT_EQ(host.files.at(kReport).open_streams, 0);
}

TEST_F(AveragingThePeakAttributes, ReplacesAnOlderReport) {
  host.files[kReport].bytes = "one\r\ntwo\r\nthree\r\nfour\r\n";
  Average();
  EXPECT_EQ(ReportBytes(), kReportBytes);
}

TEST_F(AveragingThePeakAttributes, CallsInItsOrder) {
  Average();
  const Calls per_mass = InOrder({kTraceFlag, AicLogAsked("AICDisabled")});
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({{"Trace.Entry(AverageThePeakAttributes,9)"},
                                        AicLogAsked("AICDisabled"),
                                        Repeated(3, per_mass),
                                        AicLogAsked("AICDisabled"),
                                        kReportWritten,
                                        {"Trace.Exit(AverageThePeakAttributes,9)"}})));
}

TEST_F(AveragingThePeakAttributes, CallsInItsOrderWithAnAicLogAndDiagnostics) {
  OpenLog();
  instrument.flags["TraceAICPeakAttributes"] = "Yes";
  host.trace->on = true;
  Average();
  const Calls line = InOrder({AicLogAllowed("AICDisabled"), {"TextStream.WriteLine(AIC_1.TXT)"}});
  Calls untraced;
  for (const std::string& call : journal.entries()) {
    untraced.push_back(call.rfind("Trace.TracePrint", 0) == 0 ? "diagnostic" : call);
  }
  const Calls one = {"diagnostic"};
  EXPECT_THAT(untraced, ElementsAreArray(InOrder({{"Trace.Entry(AverageThePeakAttributes,9)"},
                                                  line,
                                                  kTraceFlag,
                                                  one,
                                                  line,
                                                  kTraceFlag,
                                                  one,
                                                  line,
                                                  kTraceFlag,
                                                  Repeated(3, one),
                                                  line,
                                                  line,
                                                  kReportWritten,
                                                  {"Trace.Exit(AverageThePeakAttributes,9)"}})));
}

TEST_F(AveragingThePeakAttributes, WritesHeadingMassesAndNoticeToTheAicLog) {
  OpenLog();
  Average();
  EXPECT_EQ(host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT").bytes,
            "===AIC 20240229 at 13:05:09===\r\nGainChannel = 1\r\n"
            "Averages (and times used for averaging) [MassIdx, Average, TOFs]\r\n"
            "0, 125.1, 125, 125.2\r\n"
            "1, 260.3, 260.25, 260.35\r\n"
            "2, 488, 487.5, 488.5\r\n"
            "AIC; writing file with Calibration data for Tune Report\r\n");
}

TEST_F(AveragingThePeakAttributes, TracesAveragesOfEveryMassAndMeasurementsOfTheLast) {
  instrument.flags["TraceAICPeakAttributes"] = "Yes";
  Average();
  EXPECT_THAT(
      host.trace->lines,
      ElementsAre("Entry AverageThePeakAttributes 9",
                  "AverageThePeakAttributes 9: ReportDebug::Averaged value being written to "
                  "ReportCalibData File.  MassAssignment[100.5]MassDelta[0.5]PPM[5000]",
                  "AverageThePeakAttributes 9: ReportDebug::Averaged value being written to "
                  "ReportCalibData File.  MassAssignment[200]MassDelta[0]PPM[0]",
                  "AverageThePeakAttributes 9: ReportDebug::Averaging values to be written to "
                  "ReportCalibData File.  MassAssignment[400.5]MassDelta[0.5]PPM[1250]",
                  "AverageThePeakAttributes 9: ReportDebug::Averaging values to be written to "
                  "ReportCalibData File.  MassAssignment[401.5]MassDelta[1.5]PPM[3750]",
                  "AverageThePeakAttributes 9: ReportDebug::Averaged value being written to "
                  "ReportCalibData File.  MassAssignment[401]MassDelta[1]PPM[2500]",
                  "Exit AverageThePeakAttributes 9"));
}

TEST_F(AveragingThePeakAttributes, TracesNoDiagnosticsUnlessTheFlagIsExactlyYes) {
  for (const char* other : {"yes", "1", "3000", ""}) {
    instrument.flags["TraceAICPeakAttributes"] = other;
    StartAfresh();
    Average();
    EXPECT_THAT(host.trace->Texts(), IsEmpty()) << other;
  }
}

TEST_F(AveragingThePeakAttributes, StoresTheSameWithAndWithoutDiagnostics) {
  Average();
  const PeakTable plain = peaks;
  StartAfresh();
  instrument.flags["TraceAICPeakAttributes"] = "Yes";
  Average();
  for (std::int32_t m = 0; m <= 2; ++m) {
    EXPECT_EQ(peaks(m).AveragedAttribs, plain(m).AveragedAttribs);
  }
}

TEST_F(AveragingThePeakAttributes, AddsToWhatIsStoredSoThatASecondCallOfOneMeasurementDoubles) {
  Size(1);
  for (std::int32_t m = 0; m <= 2; ++m) Measure(m, {100.0}, {2.0}, {-3.0}, {50.0}, {7.0});
  Average();
  Average();
  EXPECT_EQ(peaks(1).AveragedAttribs(0), (PeakAttribs{.time = 200.0, .attribute48 = 4.0}));
  EXPECT_EQ(peaks(1).AveragedAttribs(1),
            (PeakAttribs{.time = 100.0, .attribute32 = -6.0, .abundance = 14.0}));
}

TEST_F(AveragingThePeakAttributes, AddsToWhatIsStoredBeforeItDivides) {
  Average();
  Average();
  EXPECT_DOUBLE_EQ(peaks(2).AveragedAttribs(0).time, (488.0 + 487.5 + 488.5) / 2.0);
}

TEST_F(AveragingThePeakAttributes, TakesTheNumberOfMeasurementsFromMassZero) {
  peaks(1).SpectrumAttribs.ReDim({0, 4}, {0, 1});
  for (std::int32_t k = 0; k <= 4; ++k) peaks(1).SpectrumAttribs(k, 0).time = k < 2 ? 10.0 : 1e9;
  Average();
  EXPECT_EQ(peaks(1).AveragedAttribs(0).time, 10.0);
  EXPECT_DOUBLE_EQ(peaks(2).AveragedAttribs(0).time, 488.0);
}

TEST_F(AveragingThePeakAttributes, TakesNoNumberOfMeasurementsFromTheLastMass) {
  OpenLog();
  peaks(2).SpectrumAttribs.ReDim({0, 3}, {0, 1});
  for (std::int32_t k = 0; k <= 3; ++k) peaks(2).SpectrumAttribs(k, 0).time = k < 2 ? 10.0 : 1e9;
  Average();
  EXPECT_DOUBLE_EQ(peaks(0).AveragedAttribs(0).time, 125.1);
  EXPECT_EQ(peaks(2).AveragedAttribs(0).time, 10.0);
  EXPECT_THAT(host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT").bytes,
              ::testing::HasSubstr("\r\n2, 10, 10, 10\r\n"));
}

TEST_F(AveragingThePeakAttributes, EndsAtAMassWithFewerMeasurementsThanMassZero) {
  host.files[kReport].bytes = "an older report\r\n";
  PeakAttribs only = peaks(1).SpectrumAttribs(0, 0);
  peaks(1).SpectrumAttribs.ReDim({0, 0}, {0, 1});
  peaks(1).SpectrumAttribs(0, 0) = only;
  peaks(1).AveragedAttribs(0).time = 17.0;
  Average();
  EXPECT_DOUBLE_EQ(peaks(0).AveragedAttribs(0).time, 125.1) << "averaged already";
  EXPECT_EQ(peaks(1).AveragedAttribs(0).time, 17.0) << "interrupted: as it was";
  EXPECT_EQ(peaks(2).AveragedAttribs(0).time, 0.0) << "not reached";
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[9] in AverageThePeakAttributes(): Subscript out of range"));
  EXPECT_EQ(ReportBytes(), "an older report\r\n");
}

TEST_F(AveragingThePeakAttributes, EndsAtAMassWithoutAttributes) {
  peaks(2).AveragedAttribs = {};
  Average();
  EXPECT_DOUBLE_EQ(peaks(1).AveragedAttribs(0).time, 260.3);
  EXPECT_FALSE(peaks(2).AveragedAttribs.IsDimensioned());
  EXPECT_FALSE(ReportIsThere());

  StartAfresh();
  peaks(1).SpectrumAttribs = {};
  Average();
  EXPECT_DOUBLE_EQ(peaks(0).AveragedAttribs(0).time, 125.1);
  EXPECT_FALSE(ReportIsThere());
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[9] in AverageThePeakAttributes(): Subscript out of range"));
}

TEST_F(AveragingThePeakAttributes, WritesNoReportWithoutMasses) {
  OpenLog();
  expected_masses = Variant::DoubleArray(std::vector<double>{});
  Size(2);
  EXPECT_NO_THROW(Average());
  EXPECT_FALSE(ReportIsThere());
  // The texts of the report are empty, and two characters cannot be cut from them.
  EXPECT_THAT(host.trace->Texts(), ElementsAre("error[5] in AverageThePeakAttributes(): Invalid "
                                               "procedure call or argument"));
  EXPECT_EQ(journal.Only({"TextStream.WriteLine(AIC_1.TXT)"}).size(), 2U) << "heading and notice";
  EXPECT_EQ(journal.Only({"FileSystem."}).size(), 0U);
  peaks = {};
  EXPECT_NO_THROW(Average());
  EXPECT_FALSE(ReportIsThere());
}

TEST_F(AveragingThePeakAttributes, LeavesZerosForNoMeasurements) {
  Size(0);
  Average();
  EXPECT_EQ(peaks(0).AveragedAttribs(0), PeakAttribs{});
  EXPECT_THAT(host.trace->Texts(), ElementsAre("error[6] in AverageThePeakAttributes(): Overflow"));
  EXPECT_FALSE(ReportIsThere());
}

TEST_F(AveragingThePeakAttributes, ShowsACalibrantThatWasNotFoundAsNaN) {
  peaks(1).SpectrumAttribs(0, 0).time = std::numeric_limits<double>::quiet_NaN();
  Average();
  EXPECT_TRUE(std::isnan(peaks(1).AveragedAttribs(0).time));
  EXPECT_EQ(ReportBytes(), "125.1, NaN, 488\r\n1, 2, 3\r\n-0.25, 0, 0.25\r\n");
}

TEST_F(AveragingThePeakAttributes, TracesAndSwallowsEveryFailure) {
  OpenLog();
  instrument.flags["TraceAICPeakAttributes"] = "Yes";
  fakes::FailEachCall(
      journal, [&] { StartAfresh(); }, [&] { EXPECT_NO_THROW(Average()); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(host.trace->Texts().back(),
                  "error[4711] in AverageThePeakAttributes(): Injected fault");
        EXPECT_EQ(host.OpenStreams(), 1) << "the AIC log alone";
        EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U);
      });
}

TEST_F(AveragingThePeakAttributes, HasAllAveragesBeforeTheReportCanFail) {
  for (const std::string& failing : kReportWritten) {
    StartAfresh();
    journal.fail_operation = failing;
    Average();
    EXPECT_DOUBLE_EQ(peaks(2).AveragedAttribs(0).time, 488.0) << failing;
  }
}

}  // namespace
}  // namespace tof
