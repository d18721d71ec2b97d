// How a calibrator comes to be and how it ends.
#include <algorithm>

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::kInjectedNumber;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const std::vector<std::string> kTraceCreation = {
    "Host.CreateObject(vornutils.trace.1)", "Trace.Put(mnameOfModule)", "Trace.Get(mtraceFlag)"};
const std::vector<std::string> kInstrumentCreation = {"Create.DataDictionary",
                                                      "DataDictionary.Initialize",
                                                      "Create.AcqController",
                                                      "Create.SpecParser",
                                                      "Create.CalibLogFiles",
                                                      "Create.TuneFlags",
                                                      "Create.CalibSettings",
                                                      "AcqController.InitializeController(0)",
                                                      "AcqController.InitializeAcquisition(0)",
                                                      "DataDictionary.GetConfigObject"};
const std::string kSettleTimeRead = "CalibSettings.GetValue(Calibration/AICSettlingTime_sec,0)";

class Creation : public fakes::CalibrationFixture {
 protected:
  std::vector<std::string> Expected(bool settle_time_is_read) const {
    std::vector<std::string> calls = kTraceCreation;
    calls.insert(calls.end(), kInstrumentCreation.begin(), kInstrumentCreation.end());
    if (settle_time_is_read) calls.push_back(kSettleTimeRead);
    return calls;
  }
};

TEST_F(Creation, MakesTheCollaboratorsInTheirOrderAndReadsTheSettleTime) {
  const TofCalibrator object(instrument, host, events);
  EXPECT_THAT(journal.entries(), ElementsAreArray(Expected(true)));
  EXPECT_EQ(host.trace->module_name, "vorntofcaliblib");
}

TEST_F(Creation, ReadsNoSettleTimeWithoutAConfigurationObject) {
  instrument.has_display = false;
  const TofCalibrator object(instrument, host, events);
  EXPECT_THAT(journal.entries(), ElementsAreArray(Expected(false)));
}

TEST_F(Creation, TracesNothing) {
  const TofCalibrator object(instrument, host, events);
  EXPECT_THAT(host.trace->lines, IsEmpty());
}

TEST_F(Creation, RaisesEveryFailureToTheCreatorAndStopsThere) {
  std::unique_ptr<ModuleStateScope> fresh;
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal,
      [&] {
        calibrator = nullptr;
        fresh = nullptr;
        fresh = std::make_unique<ModuleStateScope>();
        host.trace->lines.clear();
      },
      [&] {
        raised = ErrorNumberOf(
            [&] { calibrator = std::make_unique<TofCalibrator>(instrument, host, events); });
      },
      [&](const std::string& failed) {
        const bool of_the_trace =
            std::find(kTraceCreation.begin(), kTraceCreation.end(), failed) != kTraceCreation.end();
        EXPECT_EQ(raised, of_the_trace ? 0 : kInjectedNumber);
        EXPECT_EQ(calibrator != nullptr, of_the_trace);
        if (!of_the_trace) {
          EXPECT_EQ(journal.entries().back(), failed);
        }
        EXPECT_THAT(host.trace->lines, IsEmpty()) << "no object has ended, for there was none";
        EXPECT_EQ(host.OpenStreams(), 0);
        EXPECT_THAT(events.events, IsEmpty());
      });
}

TEST_F(Creation, WorksWithoutATraceComponent) {
  host.trace = nullptr;
  const TofCalibrator object(instrument, host, events);
  std::vector<std::string> expected = {kTraceCreation.front()};
  expected.insert(expected.end(), kInstrumentCreation.begin(), kInstrumentCreation.end());
  expected.push_back(kSettleTimeRead);
  EXPECT_THAT(journal.entries(), ElementsAreArray(expected));
}

// Writes into the trace's lines when the log-file opener is let go of.
class InstrumentThatSeesReleases : public fakes::FakeInstrument {
 public:
  using FakeInstrument::FakeInstrument;
  std::shared_ptr<CalibLogFiles> CreateCalibLogFiles() override {
    auto real = FakeInstrument::CreateCalibLogFiles();
    CalibLogFiles* const watched = real.get();
    return {watched, [real, &lines = host.trace->lines](CalibLogFiles*) {
              lines.emplace_back("CalibLogFiles released");
            }};
  }
};

class TheEndOfAnObject : public fakes::CalibrationFixture {
 protected:
  InstrumentThatSeesReleases watching{journal, host};
};

TEST_F(TheEndOfAnObject, IsAnnouncedAtLevelNineAndReleasesTheLogFiles) {
  { const TofCalibrator object(watching, host, events); }
  EXPECT_THAT(host.trace->lines, ElementsAre("Entry Class_Terminate 9", "CalibLogFiles released",
                                             "Exit Class_Terminate 9"));
}

TEST_F(TheEndOfAnObject, NeverRaisesAndReleasesTheLogFilesWhenTheTraceFails) {
  {
    const TofCalibrator object(watching, host, events);
    journal.fail_operation = "Trace.";
  }
  EXPECT_THAT(host.trace->lines, ElementsAre("CalibLogFiles released"));
}

TEST_F(TheEndOfAnObject, AsksNothingOfTheInstrument) {
  host.trace->on = false;
  Create();
  calibrator.reset();
  EXPECT_THAT(journal.entries(), IsEmpty());
}

TEST_F(TheEndOfAnObject, ClosesAnAicLogThatAFailedCalibrationLeftOpen) {
  instrument.avoid_aic = false;
  instrument.flags[instrument.flag_key] = "No";
  instrument.flags["AICLoggingEnabled"] = "3000";
  instrument.abort_requested = -1;
  EXPECT_EQ(Calibrate(), nullptr);
  const fakes::FakeFile& log = host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT");
  EXPECT_EQ(log.open_streams, 1);
  calibrator.reset();
  EXPECT_EQ(log.open_streams, 0);
}

}  // namespace
}  // namespace tof
