// What becomes of the flight times when their averaging is interrupted.
#include <limits>

#include "component/acquisition/averaged_times.h"
#include "component/aic/peak_averaging.h"
#include "component/automation/convert.h"
#include "tests/support/aic_fixture.h"

namespace tof {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsNan;

class InterruptedAveraging : public fakes::AicFixture {
 protected:
  InterruptedAveraging() {
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 24.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
    data.measured_times.ReDim({0, 1}, {0, 2});
  }
  // The times when the averaging fails at its line of mass `mass` in the AIC log, which stands
  // behind the average of the mass; `aic` or the traditional way.
  std::vector<double> TimesOf(std::int32_t mass, bool aic) {
    const std::vector<std::string> calls = CallsOfARun(aic);
    const std::string line = "TuneFlags.GetFlag(TraceAICPeakAttributes,-1)";
    std::size_t place = 0;
    for (std::int32_t m = 0; m <= mass; ++m, ++place) {
      while (calls[place] != line) ++place;
    }
    journal.fail_from = place;
    return Times(aic);
  }
  std::vector<double> Times(bool aic, std::int16_t n = 2) {
    StartAfresh();
    times = GetAveragedTimesForCalibration(parts, host, 84, log, data, data.expected_masses, n, aic,
                                           window);
    return fakes::Elements(AsDoubleArray(times));
  }

 private:
  std::vector<std::string> CallsOfARun(bool aic) {
    journal.fail_from = fakes::Journal::kNever;
    Times(aic);
    return journal.entries();
  }
  void StartAfresh() {
    host.trace->Forget();
    journal.Clear();
  }

  double window = 0.5;
};

TEST_F(InterruptedAveraging, LeavesTimesThatAreNoNumbersForTheMassesItDidNotReach) {
  for (const bool aic : {false, true}) {
    SCOPED_TRACE(aic ? "abundance-immune" : "traditional");
    EXPECT_THAT(TimesOf(0, aic), ElementsAre(10300.0, IsNan(), IsNan()));
    EXPECT_THAT(TimesOf(1, aic), ElementsAre(10300.0, 20300.0, IsNan()));
    EXPECT_THAT(TimesOf(2, aic), ElementsAre(10300.0, 20300.0, 30300.0));
  }
}

TEST_F(InterruptedAveraging, LeavesNoTimeThatIsANumberWhenItDoesNotBegin) {
  journal.fail_operation = "Trace.Entry(AverageThePeakAttributes";
  EXPECT_THAT(Times(false), Each(IsNan()));
  EXPECT_THAT(Times(true), Each(IsNan()));
}

TEST_F(InterruptedAveraging, KeepsTheAveragesInTheStoreAsTheyWere) {
  TimesOf(0, false);
  EXPECT_EQ(data.peaks(0).AveragedAttribs(0).time, 10300.0);
  EXPECT_EQ(data.peaks(1).AveragedAttribs(0).time, 0.0);
}

// Without spectra there is nothing to average: the zeros of the store are the answer, as defined.
TEST_F(InterruptedAveraging, IsNotOneWithoutSpectra) {
  EXPECT_THAT(Times(false, 0), Each(0.0));
  instrument.flags["EnableAICAltSPPlugValues"] = "Yes";
  instrument.sample_masses = {100.0, 400.0, 900.0, 1600.0, 2500.0, 3600.0};
  data.expected_masses = Variant::DoubleArray(instrument.sample_masses);
  EXPECT_THAT(Times(true, 0), Each(0.0));
}

TEST_F(InterruptedAveraging, GoesOnWhenADiagnosticCannotBeComputed) {
  instrument.flags["TraceAICPeakAttributes"] = "Yes";
  data.expected_masses = Variant::DoubleArray({100.0, 400.0, 0.0});
  PeakTable& peaks = data.peaks;
  SizeFor(1);
  for (std::int32_t m = 0; m < 3; ++m) {
    peaks(m).SpectrumAttribs(0, 0).time = 100.0 * (m + 1);
    peaks(m).SpectrumAttribs(0, 1).time = m == 2 ? 0.0 : 1.0;
  }
  EXPECT_EQ(AverageThePeakAttributes(parts, host, log, data.expected_masses, peaks), 3);
  EXPECT_EQ(peaks(2).AveragedAttribs(0).time, 300.0);
  EXPECT_EQ(LastTrace(),
            "ReportDebug::Averaged value being written to ReportCalibData File.  "
            "MassAssignment[0]MassDelta[0]PPM[NaN]");

  // Assigned masses other than 0 are infinitely far from 0; a list of masses that is none says so.
  SizeFor(1);
  peaks(2).SpectrumAttribs(0, 1).time = 5.0;
  EXPECT_EQ(AverageThePeakAttributes(parts, host, log, data.expected_masses, peaks), 3);
  EXPECT_THAT(LastTrace(), ::testing::EndsWith("MassAssignment[5]MassDelta[5]PPM[Infinity]"));
  for (const Variant& unusable : {Variant(), Variant(Variant::DoubleArray({100.0}))}) {
    SizeFor(1);
    EXPECT_EQ(AverageThePeakAttributes(parts, host, log, unusable, peaks), 3);
    EXPECT_THAT(LastTrace(), ::testing::EndsWith("MassAssignment[0]MassDelta[NaN]PPM[NaN]"));
  }
}

// A failing trace of the last diagnostic comes behind the average.
TEST_F(InterruptedAveraging, CountsAMassWhoseAverageCouldNotBeTraced) {
  instrument.flags["TraceAICPeakAttributes"] = "Yes";
  SizeFor(1);
  journal.fail_operation = "Trace.TracePrint(ReportDebug::Averaged value";
  EXPECT_EQ(AverageThePeakAttributes(parts, host, log, data.expected_masses, data.peaks), 1);
}

TEST_F(InterruptedAveraging, OfSumsBeyondTheDoublesIsAnError) {
  SizeFor(2);
  for (std::int32_t k = 0; k < 2; ++k) {
    data.peaks(1).SpectrumAttribs(k, 1).abundance = std::numeric_limits<double>::max();
  }
  EXPECT_EQ(AverageThePeakAttributes(parts, host, log, data.expected_masses, data.peaks), 1);
  EXPECT_EQ(LastTrace(), "error[6] in AverageThePeakAttributes(): Overflow");
}

}  // namespace
}  // namespace tof
