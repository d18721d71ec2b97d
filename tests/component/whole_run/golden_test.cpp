// What a whole run leaves for people and programs to read, byte by byte.
#include <string>
#include <vector>

#include "tests/support/calibration_fixture.h"
#include "tests/support/golden.h"

namespace tof::fakes {
namespace {

class GoldenRun : public CalibrationFixture {
 protected:
  GoldenRun() {
    // Spectra that differ by some ppm, coefficients and flags that are not all zero.
    instrument.spectrum_shift_ns = {2.5, 0.125, -0.25, 0.0625};
    instrument.in_force->record = {0.00065065, 297.5, 1e-3, -2.5e-7, 0.0, 3e-12, -0.5, 0.015625};
    instrument.in_force->info.PolyTermsFlags = 0x1F;
    instrument.in_force->info.TradWeighting = 5;
    instrument.in_force->info.PolyWeighting = 0x0ABCDE;
  }

  std::string Trace() const {
    std::string bytes;
    for (const std::string& line : host.trace->lines) bytes += line + "\n";
    return bytes;
  }
  const std::string& File(const std::string& name) const {
    return host.files.at("D:\\Data\\Logfiles\\" + name).bytes;
  }
};

TEST_F(GoldenRun, TracesAndLogsATraditionalCalibrationByteByByte) {
  ASSERT_NE(Calibrate(), nullptr);
  EXPECT_TRUE(MatchesGolden("traditional_run/trace.txt", Trace()));
  EXPECT_TRUE(MatchesGolden("traditional_run/calibration_log.txt",
                            File("CalibrationLog_20240229_130509.txt")));
  EXPECT_TRUE(MatchesGolden("traditional_run/calibration_data.txt", File("CalibrationData_1.TXT")));
  EXPECT_TRUE(MatchesGolden("traditional_run/tune_report.txt", File("TuneReportCalibData.txt")));
  EXPECT_EQ(host.files.size(), 3U) << "a file that has no golden";
}

TEST_F(GoldenRun, TracesAndLogsACalibrationThatFailsTwiceByteByByte) {
  instrument.bad_fits = {0.5, 0.5};
  ASSERT_EQ(Calibrate(), nullptr);
  EXPECT_TRUE(MatchesGolden("two_bad_fits/trace.txt", Trace()));
  EXPECT_TRUE(MatchesGolden("two_bad_fits/calibration_log.txt",
                            File("CalibrationLog_20240229_130509.txt")));
  EXPECT_EQ(host.files.count("D:\\Data\\Logfiles\\CalibrationData_1.TXT"), 0U);
}

TEST_F(GoldenRun, WritesTheSameBytesAgainOnANewObject) {
  ASSERT_NE(Calibrate(), nullptr);
  Journal other_journal;
  FakeHost other_host(other_journal);
  FakeInstrument other_instrument(other_journal, other_host);
  other_instrument.spectrum_shift_ns = {2.5, 0.125, -0.25, 0.0625};
  other_instrument.in_force->record = {0.00065065, 297.5, 1e-3, -2.5e-7,
                                       0.0,        3e-12, -0.5, 0.015625};
  RecordedEvents other_events;
  const ModuleStateScope other_state;
  TofCalibrator other(other_instrument, other_host, other_events);
  Variant other_times;
  ASSERT_NE(other.calibrateTOFMassAxis(n_spectra, masses, other_times, suppress_aic), nullptr);
  EXPECT_EQ(times, other_times);
  EXPECT_EQ(File("CalibrationData_1.TXT"),
            other_host.files.at("D:\\Data\\Logfiles\\CalibrationData_1.TXT").bytes);
}

}  // namespace
}  // namespace tof::fakes
