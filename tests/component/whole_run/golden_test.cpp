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

// Each mass is in the band at another voltage; the last one is too weak everywhere.
class AicGoldenRun : public GoldenRun {
 protected:
  AicGoldenRun() {
    instrument.sample_masses = {118.0863, 322.0481, 622.029, 922.0098};
    masses = Variant::DoubleArray(instrument.sample_masses);
    n_spectra = 2;
    instrument.flags["AIC_AlwaysRunOnly"] = "Yes";
    instrument.flags[instrument.flag_key] = "No";
    instrument.flags["AICLoggingEnabled"] = "3000";
    instrument.flags["TraceAICPeakAttributes"] = "Yes";
    instrument.flags["SkipCalcLikelyABeforeCalibration"] = "Yes";
    instrument.flags["SkipCalcLikelyABeforeCalibration_LikelyA"] = "0.65";
    instrument.flags["SkipCalcLikelyABeforeCalibration_t0"] = "0.3";
    instrument.settings["Calibration/AIC_RF_LowValue"] = 60.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 75.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.5;
    instrument.spectrum_shift_ns.clear();
    instrument.abundance_at = [](double mass, double volts) {
      return mass > 900.0 ? 40000.25 : CountsPerVolt(mass) * (volts - 50.0);
    };
    for (int n = 0; n < 30; ++n) {
      instrument.spectrum_shift_ns.push_back(0.0625 * (n * 7 % 11 - 5));
    }
  }
  static double CountsPerVolt(double mass) {
    if (mass < 300.0) return 6250.0;
    return mass < 600.0 ? 8000.0 : 10000.0;
  }
  void ExpectGoldens(const std::string& folder) {
    EXPECT_TRUE(MatchesGolden(folder + "/trace.txt", Trace()));
    EXPECT_TRUE(MatchesGolden(folder + "/aic_log.txt", File("AIC_1.TXT")));
    EXPECT_TRUE(
        MatchesGolden(folder + "/data_set.csv", File("AbImmunecalib_SpotFireDataSetLog.csv")));
    EXPECT_TRUE(MatchesGolden(folder + "/tune_report.txt", File("TuneReportCalibData.txt")));
    EXPECT_TRUE(MatchesGolden(folder + "/calibration_data.txt", File("CalibrationData_2.TXT")));
  }
};

TEST_F(AicGoldenRun, TracesAndLogsARampCollectedByMassByteByByte) {
  instrument.flags["ObfuscateCalibAlg"] = "1";
  instrument.row1_abundance_excess = 0.0;  // a page shows these files: an instrument's numbers
  ASSERT_NE(Calibrate(), nullptr);
  ExpectGoldens("aic_ramp_by_mass");
}

// Visited in a random order, with the display shown now and then.
TEST_F(AicGoldenRun, TracesAndLogsARampCollectedByMeasurementByteByByte) {
  instrument.flags["ObfuscateCalibAlg"] = "2";
  instrument.flags["AIC_MinimizeImpactOfDriftOnCalibPointCollection"] = "Yes";
  host.seed = 20240229;
  ASSERT_NE(Calibrate(), nullptr);
  ExpectGoldens("aic_ramp_by_measurement");
}

TEST_F(AicGoldenRun, TracesAndLogsASearchPerMassByTheFirmwareByteByByte) {
  instrument.settings["Calibration/AIC_SetpointToUse"] = 83.0;
  instrument.settings["Calibration/AIC_SearchSpeedUpFactor"] = 1.5;
  instrument.flags["AIC_RunFastVersion"] = "Yes";
  // Little above the band: the linear adjustment does the rest.
  instrument.searched_rf_value = [](double mass) { return 50.125 + 200e3 / CountsPerVolt(mass); };
  instrument.setpoints[83] = 85.0;
  ASSERT_NE(Calibrate(), nullptr);
  ExpectGoldens("aic_firmware_search");
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
