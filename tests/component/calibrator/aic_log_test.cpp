#include "component/calibrator/aic_log.h"

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::kInjectedNumber;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

constexpr const char* kHeader = "===AIC 20240229 at 13:05:09===\r\nGainChannel = 1\r\n";

class TheAicLog : public fakes::CalibrationFixture {
 protected:
  void SetUp() override {
    host.trace->on = false;
    instrument.flags[instrument.flag_key] = "No";
    instrument.flags["AICLoggingEnabled"] = "3000";
  }
  const std::string& Bytes(const std::string& name = "AIC_1.TXT") const {
    return host.files.at("D:\\Data\\Logfiles\\" + name).bytes;
  }

  Instrument parts = Collaborators();
  AicLog log;
};

TEST_F(TheAicLog, OpensWithDateTimeAndGainChannel) {
  OpenAicLog(parts, host, log);
  EXPECT_EQ(Bytes(), kHeader);
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(fakes::InOrder(
                  {fakes::SetpointRead(149),
                   {"Host.Now", "Host.DateTimeText", "CalibLogFiles.OpenLogFile(AIC,TXT)"}})));
}

TEST_F(TheAicLog, ClosesTheOneThatIsOpenWhenAnotherIsOpened) {
  OpenAicLog(parts, host, log);
  OpenAicLog(parts, host, log);
  EXPECT_EQ(host.OpenStreams(), 1);
  WriteToAICLog(parts, log, "a line");
  EXPECT_EQ(Bytes(), kHeader);  // no closing line
  EXPECT_EQ(Bytes("AIC_2.TXT"), std::string(kHeader) + "a line\r\n");
}

TEST_F(TheAicLog, RaisesEveryFailureOfItsOpeningAndStaysClosed) {
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal, [&] { log = {}; },
      [&] { raised = ErrorNumberOf([&] { OpenAicLog(parts, host, log); }); },
      [&](const std::string& failed) {
        EXPECT_EQ(raised, kInjectedNumber);
        EXPECT_EQ(journal.entries().back(), failed);
        EXPECT_EQ(log.stream, nullptr);
      });
}

TEST_F(TheAicLog, AsksForTheKeyTheFlagAndTheSwitchBeforeEveryLine) {
  OpenAicLog(parts, host, log);
  journal.Clear();
  WriteToAICLog(parts, log, "first");
  WriteToAICLog(parts, log, "  second  ");
  const Calls line =
      fakes::InOrder({fakes::AicLogAllowed("AICDisabled"), {"TextStream.WriteLine(AIC_1.TXT)"}});
  EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::Repeated(2, line)));
  EXPECT_EQ(Bytes(), std::string(kHeader) + "first\r\n  second  \r\n");
}

TEST_F(TheAicLog, StopsAskingAtAFlagThatIsNotExactlyNo) {
  OpenAicLog(parts, host, log);
  for (const char* other : {"Yes", "no", "NO", "No ", ""}) {
    instrument.flags[instrument.flag_key] = other;
    journal.Clear();
    WriteToAICLog(parts, log, "a line");
    EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::AicLogAsked("AICDisabled"))) << other;
  }
  EXPECT_EQ(Bytes(), kHeader);
}

TEST_F(TheAicLog, WritesNothingUnlessTheSwitchIs3000) {
  OpenAicLog(parts, host, log);
  for (const char* other : {"Yes", "2", "3000 ", "3000.0", ""}) {
    instrument.flags["AICLoggingEnabled"] = other;
    journal.Clear();
    WriteToAICLog(parts, log, "a line");
    EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::AicLogAllowed("AICDisabled"))) << other;
  }
  EXPECT_EQ(Bytes(), kHeader);
}

TEST_F(TheAicLog, WritesNothingWhenNoneIsOpen) {
  WriteToAICLog(parts, log, "a line");
  EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::AicLogAllowed("AICDisabled")));
  EXPECT_TRUE(host.files.empty());
}

TEST_F(TheAicLog, TakesTheKeyThatTheInstrumentNames) {
  instrument.flag_key = "AnotherKey";
  instrument.flags["AnotherKey"] = "No";
  OpenAicLog(parts, host, log);
  journal.Clear();
  WriteToAICLog(parts, log, "a line");
  EXPECT_EQ(journal.entries()[1], "TuneFlags.GetFlag(AnotherKey,-1)");
  EXPECT_EQ(Bytes(), std::string(kHeader) + "a line\r\n");
}

TEST_F(TheAicLog, RaisesEveryFailureOfALine) {
  OpenAicLog(parts, host, log);
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal, [] {}, [&] { raised = ErrorNumberOf([&] { WriteToAICLog(parts, log, "a line"); }); },
      [&](const std::string& failed) {
        EXPECT_EQ(raised, kInjectedNumber);
        EXPECT_EQ(journal.entries().back(), failed);
      });
}

TEST_F(TheAicLog, LeftOpenByAFailedRunReceivesTheAveragesOfALaterTraditionalOne) {
  instrument.avoid_aic = false;
  instrument.abort_requested = -1;
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_EQ(Bytes(), kHeader);

  instrument.abort_requested = 0;
  suppress_aic = true;
  EXPECT_NE(Calibrate(), nullptr);
  EXPECT_THAT(Bytes(), HasSubstr(std::string(kHeader) +
                                 "Averages (and times used for averaging) [MassIdx, Average, "
                                 "TOFs]\r\n0, "));
  EXPECT_EQ(host.files.at("D:\\Data\\Logfiles\\AIC_1.TXT").open_streams, 1);
}

TEST_F(TheAicLog, OpenedForARunThatAlwaysUsesAicGetsNoLinesWhileTheFlagIsNotNo) {
  instrument.flags["AIC_AlwaysRunOnly"] = "Yes";
  instrument.flags[instrument.flag_key] = "Yes";
  Calibrate();
  EXPECT_EQ(Bytes(), kHeader);
}

}  // namespace
}  // namespace tof
