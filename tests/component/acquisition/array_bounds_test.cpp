// Whose bounds a loop over masses or spectra goes by, where several arrays could say.
#include "component/acquisition/averaged_times.h"
#include "component/acquisition/time_spanned_peak_times.h"
#include "tests/support/aic_fixture.h"

namespace tof {
namespace {

using fakes::Elements;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;

// Three masses and two spectra, at 10300, 20300 and 30300 ns.
class BoundsOfAveragedTimes : public fakes::AicFixture {
 protected:
  BoundsOfAveragedTimes() {
    data.measured_times.ReDim({0, 1}, {0, 2});
    masses = data.expected_masses;
  }
  Variant Measure(std::int16_t spectra) {
    double window = 0.75;
    return GetAveragedTimesForCalibration(parts, host, 84, log, data, masses, spectra, false,
                                          window);
  }
};

TEST_F(BoundsOfAveragedTimes, AreThoseOfTheParsedSpectrumForItsMasses) {
  instrument.first_mass_parsed = 1;
  const Variant answer = Measure(2);
  ASSERT_TRUE(answer.IsArray()) << LastTrace();
  EXPECT_EQ(AsDoubleArray(answer), (BoundedArray<double>{0.0, 20300.0, 30300.0}));
  EXPECT_EQ(data.measured_times(1, 0), 0.0);
  EXPECT_EQ(data.measured_times(1, 1), 20300.0);
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(1, 0), PeakAttribs{});
}

// The spectrum that is not stored tells the size; the caller's masses are more.
TEST_F(BoundsOfAveragedTimes, AreThoseOfTheFirstSpectrumForTheAnswerWithoutSpectra) {
  instrument.masses_left_out = 1;
  const Variant answer = Measure(0);
  ASSERT_TRUE(answer.IsArray()) << LastTrace();
  EXPECT_EQ(AsDoubleArray(answer), (BoundedArray<double>{0.0, 0.0}));
  EXPECT_EQ(instrument.spectra_taken, 1);
}

TEST_F(BoundsOfAveragedTimes, AreThoseOfTheCallersMassesNotOfTheStoredOnes) {
  masses = Variant::DoubleArray({100.0});
  const Variant answer = Measure(0);
  ASSERT_TRUE(answer.IsArray()) << LastTrace();
  EXPECT_EQ(AsDoubleArray(answer).size(), 1U);
}

TEST_F(BoundsOfAveragedTimes, EndAnAnswerForMoreMassesThanTheStoreHas) {
  masses = Variant::DoubleArray({100.0, 400.0, 900.0, 1600.0});
  EXPECT_TRUE(Measure(0).IsEmpty());
  EXPECT_EQ(LastTrace(), "error[9] in GetAveragedTimesForCalibration(): Subscript out of range");
}

TEST_F(BoundsOfAveragedTimes, EndTheFirstSpectrumOfMoreMassesThanTheStoreHas) {
  masses = Variant::DoubleArray({100.0, 400.0, 900.0, 1600.0});
  data.measured_times.ReDim({0, 1}, {0, 4});
  EXPECT_TRUE(Measure(2).IsEmpty());
  EXPECT_EQ(instrument.spectra_taken, 2) << "one that is not stored, one that is";
  EXPECT_EQ(data.measured_times(0, 3), 40300.0) << "stored before its record is looked for";
  EXPECT_EQ(data.measured_times(0, 4), 0.0);
  EXPECT_EQ(NumberOf("Trace.Entry(AverageThePeakAttributes"), 0U);
}

// A record of which the spectra hold nothing has an average all the same.
TEST_F(BoundsOfAveragedTimes, AreThoseOfTheParsedSpectrumForTheAnswer) {
  instrument.first_mass_parsed = 1;
  instrument.on_spectrum = [&] { data.peaks(0).SpectrumAttribs(0, 0).time = 5.0; };
  const Variant answer = Measure(1);
  ASSERT_TRUE(answer.IsArray()) << LastTrace();
  EXPECT_EQ(data.peaks(0).AveragedAttribs(0).time, 5.0);
  EXPECT_EQ(AsDoubleArray(answer), (BoundedArray<double>{0.0, 20300.0, 30300.0}));
}

// The copy of the collected flight times into the measured times.
class BoundsOfMeasuredTimes : public fakes::AicFixture {
 protected:
  BoundsOfMeasuredTimes() {
    instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
    instrument.settings["Calibration/AIC_RF_HighValue"] = 22.0;
    instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
  }
  // `spectra` and `masses_held` are those of the measured times.
  Variant Measure(Bounds spectra, Bounds masses_held) {
    data.measured_times.ReDim(spectra, masses_held);
    for (std::int32_t s = spectra.lower; s <= spectra.upper; ++s) {
      for (std::int32_t k = masses_held.lower; k <= masses_held.upper; ++k) {
        data.measured_times(s, k) = kUntouched;
      }
    }
    double window = 0.75;
    return GetTimeSpannedCalibrantPeakTimes(parts, host, 84, log, data, 2, window);
  }
  std::vector<double> TimesOfSpectrum(std::int32_t s) const {
    std::vector<double> of_masses;
    for (std::int32_t k = data.measured_times.LBound(2); k <= data.measured_times.UBound(2); ++k) {
      of_masses.push_back(data.measured_times(s, k));
    }
    return of_masses;
  }
  void ExpectAnEndBehindTheLogLine() const {
    EXPECT_EQ(LastTrace(),
              "error[9] in GetTimeSpannedCalibrantPeakTimes(): Subscript out of range");
    EXPECT_THAT(Log(), EndsWith("\r\nStored raw measured times\r\n"));
  }

  static constexpr double kUntouched = 17.0;
};

TEST_F(BoundsOfMeasuredTimes, AreTheirOwnForTheMasses) {
  const Variant answer = Measure({0, 1}, {0, 1});
  ASSERT_TRUE(answer.IsArray()) << LastTrace();
  EXPECT_EQ(AsDoubleArray(answer).size(), 3U);
  EXPECT_THAT(TimesOfSpectrum(0), ElementsAre(10300.0, 20300.0));
  EXPECT_THAT(TimesOfSpectrum(1), ElementsAre(10300.0, 20300.0));
}

TEST_F(BoundsOfMeasuredTimes, AreTheirOwnForTheFirstMass) {
  ASSERT_TRUE(Measure({0, 1}, {1, 2}).IsArray()) << LastTrace();
  EXPECT_THAT(TimesOfSpectrum(1), ElementsAre(20300.0, 30300.0));
}

TEST_F(BoundsOfMeasuredTimes, EndTheCopyAtAMassThatIsNotThereBehindItsLogLine) {
  EXPECT_TRUE(Measure({0, 1}, {0, 3}).IsEmpty());
  EXPECT_THAT(TimesOfSpectrum(0), ElementsAre(10300.0, 20300.0, 30300.0, kUntouched));
  EXPECT_THAT(TimesOfSpectrum(1), Each(kUntouched));
  ExpectAnEndBehindTheLogLine();
}

TEST_F(BoundsOfMeasuredTimes, EndTheCopyAtASpectrumTheyDoNotHoldBehindItsLogLine) {
  EXPECT_TRUE(Measure({1, 2}, {0, 2}).IsEmpty());
  EXPECT_THAT(TimesOfSpectrum(1), Each(kUntouched));
  ExpectAnEndBehindTheLogLine();
}

TEST_F(BoundsOfMeasuredTimes, AreThoseOfTheStoreForTheSpectra) {
  ASSERT_TRUE(Measure({0, 4}, {0, 2}).IsArray()) << LastTrace();
  EXPECT_THAT(TimesOfSpectrum(1), ElementsAre(10300.0, 20300.0, 30300.0));
  for (const std::int32_t s : {2, 3, 4}) EXPECT_THAT(TimesOfSpectrum(s), Each(kUntouched)) << s;
}

// The store changes under the last spectrum, when the collection is done with mass 0.
TEST_F(BoundsOfMeasuredTimes, AreThoseOfMassZeroForTheSpectraOfAllMasses) {
  constexpr std::int32_t kLastSpectrum = 9;
  for (const std::int32_t held : {0, 1}) {
    SCOPED_TRACE(held);
    instrument.spectra_taken = 0;
    instrument.on_spectrum = [&] {
      if (instrument.spectra_taken != kLastSpectrum) return;
      data.peaks(0).SpectrumAttribs.ReDim({held, held}, {0, 1});
      data.peaks(0).SpectrumAttribs(held, 0).time = 10301.0;
    };
    ASSERT_TRUE(Measure({0, 1}, {0, 2}).IsArray()) << LastTrace();
    EXPECT_THAT(TimesOfSpectrum(held), ElementsAre(10301.0, 20300.0, 30300.0));
    EXPECT_THAT(TimesOfSpectrum(1 - held), Each(kUntouched));
  }
}

}  // namespace
}  // namespace tof
