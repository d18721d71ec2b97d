#include "component/acquisition/times_array.h"

#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using ::testing::ElementsAre;

class InitializingTheTimesArray : public fakes::CalibrationFixture {
 protected:
  InitializingTheTimesArray() { CreateTraceObject(host, "vorntofcaliblib"); }

  const Variant three_masses_ = Variant::DoubleArray({100.0, 200.0, 300.0});
  PeakTable peaks_;
};

TEST_F(InitializingTheTimesArray, MakesOneRecordOfZerosForEveryMass) {
  InitializeTimesArray(4, three_masses_, peaks_);
  ASSERT_EQ(peaks_.LBound(), 0);
  ASSERT_EQ(peaks_.UBound(), 2);
  for (const CalibMassPeakData& record : peaks_) {
    EXPECT_EQ(record.Voltage, 0.0);
    EXPECT_EQ(record.Abundance, 0);
    ASSERT_EQ(record.SpectrumAttribs.LBound(1), 0);
    ASSERT_EQ(record.SpectrumAttribs.UBound(1), 3);
    ASSERT_EQ(record.SpectrumAttribs.LBound(2), 0);
    ASSERT_EQ(record.SpectrumAttribs.UBound(2), 1);
    ASSERT_EQ(record.AveragedAttribs.LBound(), 0);
    ASSERT_EQ(record.AveragedAttribs.UBound(), 1);
    for (std::int32_t row = 0; row <= 1; ++row) {
      EXPECT_EQ(record.AveragedAttribs(row), PeakAttribs{});
      for (std::int32_t s = 0; s <= 3; ++s)
        EXPECT_EQ(record.SpectrumAttribs(s, row), PeakAttribs{});
    }
  }
}

TEST_F(InitializingTheTimesArray, DiscardsWhatWasThere) {
  InitializeTimesArray(2, three_masses_, peaks_);
  peaks_(0).Voltage = 12.5;
  peaks_(0).AveragedAttribs(0).time = 1.0;
  peaks_(0).SpectrumAttribs(1, 1).abundance = 1.0;
  InitializeTimesArray(2, three_masses_, peaks_);
  EXPECT_EQ(peaks_(0).Voltage, 0.0);
  EXPECT_EQ(peaks_(0).AveragedAttribs(0), PeakAttribs{});
  EXPECT_EQ(peaks_(0).SpectrumAttribs(1, 1), PeakAttribs{});
}

TEST_F(InitializingTheTimesArray, AllowsNoMeasurements) {
  InitializeTimesArray(0, three_masses_, peaks_);
  EXPECT_EQ(peaks_(2).SpectrumAttribs.UBound(1), -1);
  EXPECT_EQ(peaks_(2).AveragedAttribs.UBound(), 1);
}

TEST_F(InitializingTheTimesArray, RefusesANegativeNumberOfMeasurementsBehindTheMasses) {
  for (const std::int32_t negative : {-1, -5, -32768}) {
    peaks_ = {};
    EXPECT_EQ(ErrorNumberOf([&] { InitializeTimesArray(negative, three_masses_, peaks_); }), 9);
    EXPECT_EQ(peaks_.UBound(), 2);
    EXPECT_FALSE(peaks_(0).SpectrumAttribs.IsDimensioned());
  }
}

TEST_F(InitializingTheTimesArray, NeedsMassesThatWereStored) {
  EXPECT_EQ(ErrorNumberOf([&] { InitializeTimesArray(3, Variant(), peaks_); }), 13);
  EXPECT_FALSE(peaks_.IsDimensioned());
}

TEST_F(InitializingTheTimesArray, AnnouncesItselfAndHasNoErrorLine) {
  InitializeTimesArray(3, three_masses_, peaks_);
  ErrorNumberOf([&] { InitializeTimesArray(-1, three_masses_, peaks_); });
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry InitializeTimesArray 9", "Exit InitializeTimesArray 9",
                          "Entry InitializeTimesArray 9", "Exit InitializeTimesArray 9"));
}

}  // namespace
}  // namespace tof
