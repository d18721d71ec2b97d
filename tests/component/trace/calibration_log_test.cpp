#include "component/trace/calibration_log.h"

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::InOrder;
using fakes::kInjectedNumber;
using fakes::Repeated;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kPath = "D:\\Data\\Logfiles\\CalibrationLog_20240229_130509.txt";
constexpr const char* kName = "CalibrationLog_20240229_130509.txt";
constexpr const char* kHeader = "===CALIBRATION 20240229 at 13:05:09===\r\nGainChannel[1]\r\n";

const Calls kOpening = {"Host.CreateFileSystem",
                        "Create.InstrumentPaths",
                        "InstrumentPaths.GetBaseFolder",
                        "Host.Now",
                        "FileSystem.OpenForAppending(" + std::string(kName) + ")",
                        "Create.AcqController",
                        "AcqController.ReadSetpoint(149)",
                        "Host.Now",
                        "Host.DateTimeText",
                        "TextStream.WriteLine(" + std::string(kName) + ")"};
const Calls kReading = {"MassCalCoefficients.GetCoefficientRecord",
                        "MassCalCoefficients.GetCalInfo"};
const Calls kWriting = {"TextStream.WriteLine(" + std::string(kName) + ")"};

class CalibrationLog : public fakes::CalibrationFixture {
 protected:
  void SetUp() override {
    host.trace->on = false;
    coefficients->record = {0.00065, 300.25, -1.5e-7, 0.0, 1e100, -2.0, 123456.789, 0.1};
    coefficients->info.PolyTermsFlags = 0x1F;
    coefficients->info.TradWeighting = 5;
    coefficients->info.PolyWeighting = 0xABC;
  }

  // A new module state, traced or not, with the collaborators that a routine takes.
  Instrument Fresh() {
    module_ = nullptr;  // the earlier scope ends before the next begins
    module_ = std::make_unique<ModuleStateScope>();
    host.files.clear();
    return Collaborators();
  }
  void Dump(Instrument& parts) { TraceDumpCoefficients(parts, host, coefficients, false); }

  std::unique_ptr<ModuleStateScope> module_;
  std::shared_ptr<fakes::FakeCoefficients> coefficients = instrument.NewCoefficients(1.0, 0.0);

  const std::vector<std::string> dump_lines_ = {"Mass coefficients are in nsecs",
                                                "coefficient, coefficient value",
                                                "A, 6.5000000000E-04",
                                                "B, 3.0025000000E+02",
                                                "C, -1.5000000000E-07",
                                                "D, 0.0000000000E+00",
                                                "E, 1.0000000000E+100",
                                                "F, -2.0000000000E+00",
                                                "G, 1.2345678900E+05",
                                                "H, 1.0000000000E-01",
                                                "PolyTermsFlags = 0x00001F",
                                                "TradWeighting = 0x000005",
                                                "PolyWeighting = 0x000ABC"};
  std::string DumpBytes(const std::string& time = "13:05:09") const {
    std::string bytes = "Time: 20240229 " + time + "\r\n";
    for (const std::string& line : dump_lines_) bytes += line + "\r\n";
    return bytes;
  }
};

TEST_F(CalibrationLog, IsOpenedForAppendingAndGetsItsHeader) {
  Instrument parts = Fresh();
  OpenCalibrationLog(parts, host);
  EXPECT_THAT(journal.entries(), ElementsAreArray(kOpening));
  EXPECT_EQ(host.files.at(kPath).bytes, kHeader);
  EXPECT_EQ(host.OpenStreams(), 1);
}

TEST_F(CalibrationLog, ReadsTheGainChannelThroughAControllerOfItsOwn) {
  Instrument parts = Fresh();
  parts.acq_controller = nullptr;
  instrument.setpoints[149] = std::int16_t{3};
  OpenCalibrationLog(parts, host);
  EXPECT_THAT(host.files.at(kPath).bytes, HasSubstr("GainChannel[3]"));
}

TEST_F(CalibrationLog, StaysClosedWhenAnyCallOfTheOpeningFails) {
  Instrument parts;
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal, [&] { parts = Fresh(); },
      [&] { raised = ErrorNumberOf([&] { OpenCalibrationLog(parts, host); }); },
      [&](const std::string&) {
        EXPECT_EQ(raised, kInjectedNumber);
        EXPECT_EQ(CurrentModuleState().calibration_log, nullptr);
        EXPECT_EQ(host.OpenStreams(), 0);
      });
}

TEST_F(CalibrationLog, ADumpOpensTheFileTracesAndThenWrites) {
  Instrument parts = Fresh();
  Dump(parts);
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder(
                  {kOpening, kReading, {"Host.Now"}, kWriting, kReading, Repeated(13, kWriting)})));
  EXPECT_EQ(host.files.at(kPath).bytes, kHeader + DumpBytes());
}

TEST_F(CalibrationLog, ADumpIsTracedAtLevelOne) {
  host.trace->on = true;
  Instrument parts = Fresh();
  Dump(parts);
  Calls expected = {"Entry TraceDumpCoefficients 1"};
  for (const std::string& line : dump_lines_) {
    expected.push_back("TraceDumpCoefficients 1: " + line);
  }
  expected.emplace_back("Exit TraceDumpCoefficients 1");
  EXPECT_THAT(host.trace->lines, ElementsAreArray(expected));
}

TEST_F(CalibrationLog, ADumpIsTracedCompletelyBeforeTheFileIsWritten) {
  host.trace->on = true;
  Instrument parts = Fresh();
  OpenCalibrationLog(parts, host);
  journal.Clear();
  Dump(parts);
  Calls traced;
  for (const std::string& line : dump_lines_) {
    traced.push_back("Trace.TracePrint(" + line + ",TraceDumpCoefficients,1)");
  }
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({{"Trace.Entry(TraceDumpCoefficients,1)"},
                                        kReading,
                                        traced,
                                        {"Host.Now"},
                                        kWriting,
                                        kReading,
                                        Repeated(13, kWriting),
                                        {"Trace.Exit(TraceDumpCoefficients,1)"}})));
}

TEST_F(CalibrationLog, TwoDumpsShareOneFileAndOneHeader) {
  Instrument parts = Fresh();
  Dump(parts);
  host.Sleep(61000);
  Dump(parts);
  ASSERT_EQ(host.files.size(), 1U);
  EXPECT_EQ(host.files.at(kPath).bytes, kHeader + DumpBytes() + DumpBytes("13:06:10"));
  EXPECT_EQ(host.OpenStreams(), 1);
}

TEST_F(CalibrationLog, NamesTheUnitThatTheCallerChooses) {
  host.trace->on = true;
  Instrument parts = Fresh();
  TraceDumpCoefficients(parts, host, coefficients, true);
  EXPECT_EQ(host.trace->Texts().front(), "Mass coefficients are in usecs");
  EXPECT_THAT(host.files.at(kPath).bytes,
              HasSubstr("\r\nMass coefficients are in usecs\r\ncoefficient, "));
}

TEST_F(CalibrationLog, PadsTheFlagsWithFourZerosAndTheWeightingsWithSix) {
  struct Row {
    std::int32_t value;
    const char* flags;
    const char* weighting;
  };
  host.trace->on = true;
  for (const Row& row : {Row{0, "0x00000", "0x000000"}, Row{5, "0x00005", "0x000005"},
                         Row{0x1F, "0x00001F", "0x00001F"}, Row{0xABCDEF, "0xABCDEF", "0xABCDEF"},
                         Row{0x1234567, "0x234567", "0x234567"}, Row{-1, "0xFFFFFF", "0xFFFFFF"}}) {
    Instrument parts = Fresh();
    coefficients->info.PolyTermsFlags = row.value;
    coefficients->info.TradWeighting = row.value;
    coefficients->info.PolyWeighting = row.value;
    Dump(parts);
    const std::vector<std::string> texts = host.trace->Texts();
    EXPECT_THAT(std::vector<std::string>(texts.end() - 3, texts.end()),
                ElementsAre(std::string("PolyTermsFlags = ") + row.flags,
                            std::string("TradWeighting = ") + row.weighting,
                            std::string("PolyWeighting = ") + row.weighting));
  }
}

TEST_F(CalibrationLog, ReadsTheObjectAfreshForTheFile) {
  // A second copy of the record, taken between the two, would be seen here.
  class Counting : public fakes::FakeCoefficients {
   public:
    using FakeCoefficients::FakeCoefficients;
    CoefficientRecord GetCoefficientRecord() override {
      record[0] += 1.0;
      return FakeCoefficients::GetCoefficientRecord();
    }
  };
  host.trace->on = true;
  Instrument parts = Fresh();
  TraceDumpCoefficients(parts, host, std::make_shared<Counting>(journal), false);
  EXPECT_EQ(host.trace->Texts()[2], "A, 1.0000000000E+00");
  EXPECT_THAT(host.files.at(kPath).bytes, HasSubstr("\r\nA, 2.0000000000E+00\r\n"));
}

TEST_F(CalibrationLog, ADumpOfNoObjectIsAnErrorBehindTheOpening) {
  Instrument parts = Fresh();
  EXPECT_EQ(ErrorNumberOf([&] { TraceDumpCoefficients(parts, host, nullptr, false); }), 91);
  EXPECT_EQ(host.files.at(kPath).bytes, kHeader);
}

TEST_F(CalibrationLog, EveryFailingCallOfADumpIsRaisedWithoutATraceLineOfItsOwn) {
  host.trace->on = true;
  Instrument parts;
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal,
      [&] {
        parts = Fresh();
        host.trace->lines.clear();
      },
      [&] { raised = ErrorNumberOf([&] { Dump(parts); }); },
      [&](const std::string& call) {
        EXPECT_EQ(raised, call.rfind("Trace.Exit", 0) == 0 ? 0 : kInjectedNumber);
        for (const std::string& line : host.trace->lines) {
          EXPECT_EQ(line.find("rror["), std::string::npos) << line;
        }
        EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U);
      });
}

TEST_F(CalibrationLog, GoesOnInTheSameFileAfterAFailedLine) {
  Instrument parts = Fresh();
  Dump(parts);
  journal.fail_operation = "TextStream.WriteLine";
  EXPECT_EQ(ErrorNumberOf([&] { Dump(parts); }), kInjectedNumber);
  journal.fail_operation.clear();
  Dump(parts);
  EXPECT_EQ(host.files.at(kPath).bytes, kHeader + DumpBytes() + DumpBytes());
}

TEST_F(CalibrationLog, IsNeverClosedWhileTheModuleStateLives) {
  Create();
  Calibrate();
  calibrator.reset();
  EXPECT_EQ(host.files.at(kPath).open_streams, 1);
  EXPECT_THAT(journal.Only({"TextStream.Close(CalibrationLog"}), IsEmpty());
}

}  // namespace
}  // namespace tof
