// Which peaks and settings the estimate of the likely A works with, and how many it can count.
#include "tests/component/calibration/likely_a_fixture.h"

namespace tof {
namespace {

using fakes::GivenCandidates;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

TEST_F(GivenCandidates, AreThePeaksOfTheFirstListAndTheSecondIsDumped) {
  AInForce(1.0);
  std::vector<PeakRecord> second = {{.position = 11.5, .height = 1.0},
                                    {.position = 22.5, .height = 2.0},
                                    {.position = 33.5, .height = 3.0}};
  EXPECT_TRUE(EstimateFrom({PeaksOf({0.5, 1.0, 1.0, 1.0}), second}));
  EXPECT_EQ(likely_a, 1.0);
  std::vector<std::string> dumped;
  for (const std::string& text : host.trace->Texts()) {
    if (text.rfind("Peak[", 0) == 0) dumped.push_back(text);
  }
  EXPECT_THAT(dumped,
              ElementsAre("Peak[0]: Mass, Height[11.5, 1]", "Peak[1]: Mass, Height[22.5, 2]",
                          "Peak[2]: Mass, Height[33.5, 3]"));
}

TEST_F(GivenCandidates, CannotBeDimensionedWithoutAPeakInTheFirstList) {
  EXPECT_FALSE(EstimateFrom({{}, PeaksOf({1.0, 1.0, 1.0})}));
  EXPECT_EQ(host.trace->Texts().back(), "CalculateLIkelyAAndt0Values.Error[9]");
  EXPECT_THAT(host.trace->Texts(), Not(Contains("Initialization complete")));
}

// Every candidate, and a row that was never filled, is within twice the target.
class CountOfCandidates : public GivenCandidates {
 protected:
  CountOfCandidates() {
    AInForce(1.0);
    Allow(2.0);
    journal.keep_entries = false;
  }
  bool EstimateFromPeaks(std::size_t count) { return Estimate(std::vector<double>(count, 1.0)); }
};

TEST_F(CountOfCandidates, GoesUpTo32767) {
  EXPECT_TRUE(EstimateFromPeaks(32768));  // row 0 is not looked at
  EXPECT_EQ(FirstPass().size(), 32767U);
  EXPECT_THAT(host.message_boxes, IsEmpty());
}

TEST_F(CountOfCandidates, OverflowsAtOneMore) {
  EXPECT_FALSE(EstimateFromPeaks(32769));
  EXPECT_EQ(host.trace->Texts().back(), "CalculateLIkelyAAndt0Values.Error[6]");
  EXPECT_THAT(host.message_boxes, ElementsAre("Error"));
}

class CountOfPeaks : public GivenCandidates {
 protected:
  void Pair(std::int32_t n_peaks) {
    host.trace->Forget();
    journal.keep_entries = false;
    fakes::FakePeakList peaks(journal);
    peaks.records.assign(static_cast<std::size_t>(n_peaks), {.position = 60000.0});
    Instrument parts = Collaborators();
    CandidateTable table(0, n_peaks - 1);
    CalibrateProcedureA(parts, table, peaks, BoundedArray<double>({3600.0}), 0.0);
    last_ = table(n_peaks - 1);
  }
  Candidate last_;
};

TEST_F(CountOfPeaks, PairsUpTo32767) {
  Pair(32767);
  EXPECT_EQ(last_, (Candidate{3600.0, 60000.0, 1.0}));
  EXPECT_THAT(host.trace->Texts(), IsEmpty());
}

TEST_F(CountOfPeaks, OverflowsAtOneMore) {
  Pair(32768);
  EXPECT_THAT(host.trace->Texts(), ElementsAre("CalibrateProcedureA.Error[6]"));
}

struct SelectionCase {
  const char* name;
  Variant setpoint117;
  const char* call;
};

class CalibrantSelection : public fakes::CalibrationFixture,
                           public ::testing::WithParamInterface<SelectionCase> {};

TEST_P(CalibrantSelection, IsSetpoint117Rounded) {
  instrument.setpoints[117] = GetParam().setpoint117;
  Instrument parts = Collaborators();
  double likely_a = 0.0;
  double t0 = 0.0;
  EXPECT_TRUE(CalculateLikelyAAndt0Values(parts, host, likely_a, t0, Variant::Missing{}));
  EXPECT_THAT(journal.entries(), Contains(StartsWith(GetParam().call)));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CalibrantSelection,
    ::testing::Values(
        SelectionCase{"HalfToTheEvenBelow", 2.5, "AcqController.GetCalibrantMasses(2,"},
        SelectionCase{"HalfToTheEvenAbove", 3.5, "AcqController.GetCalibrantMasses(4,"},
        SelectionCase{"Down", 3.4, "AcqController.GetCalibrantMasses(3,"},
        SelectionCase{"Up", 3.6, "AcqController.GetCalibrantMasses(4,"},
        SelectionCase{"Beyond16Bits", 70000.5, "AcqController.GetCalibrantMasses(70000,"},
        SelectionCase{"Text", "5", "AcqController.GetCalibrantMasses(5,"}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(GivenCandidates, HaveTheToleranceOfTheFpsModeOnlyWhenItsSetpointIsTrue) {
  AInForce(1.0);
  instrument.setpoints[162] = std::int16_t{1};
  EXPECT_TRUE(Estimate({0.5, 1.0, 1.0, 1.0}));
  EXPECT_THAT(journal.entries(),
              Contains("CalibSettings.GetValue(Calibration/TargetAPercentError,0)"));
  EXPECT_THAT(journal.entries(),
              Not(Contains(StartsWith("CalibSettings.GetValue(Calibration/TargetAPercentError_"))));
}

}  // namespace
}  // namespace tof
