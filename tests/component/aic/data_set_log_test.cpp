#include "component/aic/data_set_log.h"

#include "component/acquisition/times_array.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::InOrder;
using fakes::Repeated;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr const char* kPath = "D:\\Data\\Logfiles\\AbImmunecalib_SpotFireDataSetLog.csv";
const std::string kName = "AbImmunecalib_SpotFireDataSetLog.csv";
const std::string kHeader = "Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance\r\n";

const Calls kOpening = {"Host.Now",
                        "Host.Now",
                        "Create.InstrumentPaths",
                        "InstrumentPaths.GetBaseFolder",
                        "Host.CreateFileSystem",
                        "FileSystem.FileExists(" + kName + ")",
                        "FileSystem.OpenForAppending(" + kName + ")"};
const Calls kLine = {"TextStream.WriteLine(" + kName + ")"};
const Calls kRow = {"CalibLogFiles.JoinAsCsvLine", "TextStream.WriteLine(" + kName + ")"};

class TheDataSetLog : public fakes::CalibrationFixture {
 protected:
  // Flight time m.k and abundance 1000 m + k of measurement k of mass m.
  void Fill(std::int32_t masses_held, std::int32_t measurements) {
    InitializeTimesArray(measurements, Variant::DoubleArray(0, masses_held - 1), peaks);
    for (std::int32_t m = 0; m < masses_held; ++m) {
      for (std::int32_t k = 0; k < measurements; ++k) {
        peaks(m).SpectrumAttribs(k, 0) = {.time = m + k / 10.0, .abundance = -1.0};
        peaks(m).SpectrumAttribs(k, 1) = {.time = -1.0, .abundance = 1000.0 * m + k};
      }
    }
    host.trace->Forget();
    journal.Clear();
  }
  void Write() { WriteDataToSpotFireLog(parts, host, peaks); }
  const std::string& Bytes() const { return host.files.at(kPath).bytes; }

  Instrument parts = Collaborators();
  PeakTable peaks;
};

TEST_F(TheDataSetLog, TakesTheMeasurementsFromTheLowerBoundOfMassZero) {
  Fill(1, 1);
  peaks(0).SpectrumAttribs.ReDim({1, 2}, {0, 1});
  peaks(0).SpectrumAttribs(1, 0).time = 10.5;
  peaks(0).SpectrumAttribs(2, 0).time = 20.5;
  Write();
  EXPECT_EQ(Bytes(), kHeader +
                         "20240229, 130509, 0, 1, 10.5, 0\r\n"
                         "20240229, 130509, 0, 2, 20.5, 0\r\n");
}

TEST_F(TheDataSetLog, GetsAHeaderAndARowForEveryMassAndMeasurement) {
  Fill(3, 5);
  Write();
  EXPECT_EQ(Bytes(), kHeader +
                         "20240229, 130509, 0, 0, 0, 0\r\n"
                         "20240229, 130509, 0, 1, 0.1, 1\r\n"
                         "20240229, 130509, 0, 2, 0.2, 2\r\n"
                         "20240229, 130509, 0, 3, 0.3, 3\r\n"
                         "20240229, 130509, 0, 4, 0.4, 4\r\n"
                         "20240229, 130509, 1, 0, 1, 1000\r\n"
                         "20240229, 130509, 1, 1, 1.1, 1001\r\n"
                         "20240229, 130509, 1, 2, 1.2, 1002\r\n"
                         "20240229, 130509, 1, 3, 1.3, 1003\r\n"
                         "20240229, 130509, 1, 4, 1.4, 1004\r\n"
                         "20240229, 130509, 2, 0, 2, 2000\r\n"
                         "20240229, 130509, 2, 1, 2.1, 2001\r\n"
                         "20240229, 130509, 2, 2, 2.2, 2002\r\n"
                         "20240229, 130509, 2, 3, 2.3, 2003\r\n"
                         "20240229, 130509, 2, 4, 2.4, 2004\r\n");
}

TEST_F(TheDataSetLog, IsAskedForInItsOrderAndClosedByItsRelease) {
  Fill(2, 2);
  Write();
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder({{"Trace.Entry(WriteDataToSpotFireLog,9)"},
                                        kOpening,
                                        kLine,
                                        Repeated(4, kRow),
                                        {"Trace.Exit(WriteDataToSpotFireLog,9)"}})));
  EXPECT_EQ(host.OpenStreams(), 0);
}

TEST_F(TheDataSetLog, GetsNoSecondHeader) {
  Fill(1, 1);
  Write();
  journal.Clear();
  host.Sleep(61000);
  Write();
  EXPECT_EQ(Bytes(), kHeader + "20240229, 130509, 0, 0, 0, 0\r\n20240229, 130610, 0, 0, 0, 0\r\n");
  EXPECT_THAT(journal.Only({"TextStream."}), ElementsAreArray(kLine));
}

TEST_F(TheDataSetLog, AppendsToAFileOfAnyContents) {
  host.files[kPath].bytes = "";
  Fill(1, 1);
  Write();
  EXPECT_EQ(Bytes(), "20240229, 130509, 0, 0, 0, 0\r\n");
}

TEST_F(TheDataSetLog, GivesTwoCallsWithinASecondTheSameDateAndTime) {
  Fill(1, 1);
  Write();
  Write();
  EXPECT_EQ(Bytes(), kHeader + "20240229, 130509, 0, 0, 0, 0\r\n20240229, 130509, 0, 0, 0, 0\r\n");
}

TEST_F(TheDataSetLog, ReadsTheDateFirstAndTheTimeAfresh) {
  // Midnight passes between the two readings.
  class HostAtMidnight : public fakes::FakeHost {
   public:
    using FakeHost::FakeHost;
    DateTime Now() override {
      const DateTime now = start;
      start = {2024, 3, 1, 0, 0, 0};
      return now;
    }
  };
  HostAtMidnight midnight(journal);
  midnight.start = {2024, 2, 29, 23, 59, 59};
  Fill(1, 2);
  WriteDataToSpotFireLog(parts, midnight, peaks);
  EXPECT_EQ(midnight.files.at(kPath).bytes,
            kHeader + "20240229, 000000, 0, 0, 0, 0\r\n20240229, 000000, 0, 1, 0.1, 1\r\n");
}

TEST_F(TheDataSetLog, TakesTheRangeOfMassZeroForAllMasses) {
  Fill(2, 2);
  peaks(1).SpectrumAttribs.ReDim({0, 5}, {0, 1});
  Write();
  EXPECT_THAT(journal.Only({"CalibLogFiles."}), ::testing::SizeIs(4));
}

TEST_F(TheDataSetLog, EndsAtAMassWithFewerMeasurementsThanMassZero) {
  Fill(3, 2);
  peaks(1).SpectrumAttribs.ReDim({0, 0}, {0, 1});
  Write();
  EXPECT_EQ(Bytes(), kHeader +
                         "20240229, 130509, 0, 0, 0, 0\r\n"
                         "20240229, 130509, 0, 1, 0.1, 1\r\n"
                         "20240229, 130509, 1, 0, 0, 0\r\n");
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[9] in WriteDataToSpotFireLog(): Subscript out of range"));
  EXPECT_EQ(host.OpenStreams(), 0);
}

TEST_F(TheDataSetLog, EndsAtAMassWithoutMeasurements) {
  Fill(2, 1);
  peaks(1).SpectrumAttribs = {};
  Write();
  EXPECT_EQ(Bytes(), kHeader + "20240229, 130509, 0, 0, 0, 0\r\n");
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[9] in WriteDataToSpotFireLog(): Subscript out of range"));
}

TEST_F(TheDataSetLog, EndsBehindTheHeaderWithoutRecords) {
  Write();
  EXPECT_EQ(Bytes(), kHeader);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[9] in WriteDataToSpotFireLog(): Subscript out of range"));
}

TEST_F(TheDataSetLog, TracesAndSwallowsEveryFailureAndKeepsTheRowsBeforeIt) {
  Fill(2, 2);
  Write();
  const std::string whole = Bytes();
  fakes::FailEachCall(
      journal,
      [&] {
        host.files.clear();
        host.trace->Forget();
      },
      [&] { EXPECT_NO_THROW(Write()); },
      [&](const std::string& failed) {
        EXPECT_EQ(host.OpenStreams(), 0);
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_THAT(host.trace->Texts(),
                    ElementsAre("error[4711] in WriteDataToSpotFireLog(): Injected fault"));
        const std::string written = host.files.count(kPath) != 0 ? Bytes() : "";
        EXPECT_EQ(whole.rfind(written, 0), 0U) << written;
        EXPECT_LT(written.size(), whole.size());
      });
}

}  // namespace
}  // namespace tof
