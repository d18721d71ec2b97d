#include "component/acquisition/averaged_times.h"

#include <algorithm>

#include "component/acquisition/store_attributes.h"
#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kIsAborted = "AcqController.IsAbortRequested";
const std::string kSpectrum = "SpecParser.GetCalibrantPeakAttributes(0.5)";
const std::string kWindowRead = "CalibSettings.GetValue(PeakHandling/PeakFindWindowInPercentT,0)";
const std::string kAveraging = "Trace.Entry(AverageThePeakAttributes,9)";
constexpr const char* kAborted = "error[1] in GetAveragedTimesForCalibration(): User aborted";

class AveragedTimes : public fakes::CalibrationFixture {
 protected:
  AveragedTimes() {
    n_spectra = 2;
    masses = Variant::DoubleArray({118.0863, 622.029, 1521.9715});
    StartAfresh();
  }

  // As the driver leaves the store before it measures.
  void StartAfresh() {
    data = {};
    data.expected_masses = Variant::DoubleArray({118.0863, 622.029, 1521.9715});
    data.measured_times.ReDim({0, 1}, {0, 2});
    instrument.spectra_taken = 0;
    instrument.abort_requested = 0;
    window = -1.0;
    host.trace->Forget();
    journal.Clear();
  }
  Variant Measure(bool aic = false) {
    return GetAveragedTimesForCalibration(parts, host, 84, aic_log, data, masses, n_spectra, aic,
                                          window);
  }
  double TrueTime(std::int32_t mass_index) const {
    return instrument.TrueTime(AsDoubleArray(data.expected_masses)(mass_index));
  }
  // What is asked of the instrument until the averaging begins.
  Calls AskedBeforeAveraging() const {
    Calls asked;
    for (const std::string& call : journal.entries()) {
      if (call == kAveraging) break;
      if (call.rfind("Trace.", 0) != 0) asked.push_back(call);
    }
    return asked;
  }
  // From its `nth` abort poll (from 0) on, the instrument answers `answer`.
  void AnswerAbortFromPoll(int nth, std::int16_t answer) {
    StartAfresh();
    Measure();
    const Calls calls = journal.entries();
    StartAfresh();
    for (std::size_t n = 0; n < calls.size(); ++n) {
      if (calls[n] != kIsAborted || nth-- != 0) continue;
      journal.abort_before = n;
      break;
    }
    journal.request_abort = [this, answer] { instrument.abort_requested = answer; };
  }

  Instrument parts = Collaborators();
  AicLog aic_log;
  CalibrantData data;
  double window = -1.0;
};

TEST_F(AveragedTimes, TakeOneSpectrumMoreThanTheyStoreAndPollForAnAbortAroundEach) {
  Measure();
  const Calls calls = journal.entries();
  const auto averaging = std::find(calls.begin(), calls.end(), kAveraging);
  EXPECT_THAT(
      Calls(calls.begin(), averaging),
      ElementsAre("Trace.Entry(GetAveragedTimesForCalibration,9)",
                  "Trace.Entry(InitializeTimesArray,9)", "Trace.Exit(InitializeTimesArray,9)",
                  kWindowRead,
                  "Trace.TracePrint(dPeakFindTimeWindow = "
                  "0.5,GetAveragedTimesForCalibration,9)",
                  kSpectrum, kIsAborted, kSpectrum, kIsAborted, kIsAborted, kSpectrum, kIsAborted));
  EXPECT_THAT(Calls(calls.end() - 2, calls.end()),
              ElementsAre("Trace.Exit(AverageThePeakAttributes,9)",
                          "Trace.Exit(GetAveragedTimesForCalibration,9)"));
}

TEST_F(AveragedTimes, AreTheMeanOfTheStoredSpectraInTheOrderOfTheMasses) {
  instrument.spectrum_shift_ns = {1000.0, 0.25, 0.75};  // the first is not stored
  const Variant answer = Measure();
  const auto& averaged = AsDoubleArray(answer);
  ASSERT_EQ(averaged.LBound(), 0);
  ASSERT_EQ(averaged.UBound(), 2);
  for (std::int32_t k = 0; k <= 2; ++k) {
    EXPECT_DOUBLE_EQ(averaged(k), TrueTime(k) + 0.5);
    EXPECT_DOUBLE_EQ(data.measured_times(0, k), TrueTime(k) + 0.25);
    EXPECT_DOUBLE_EQ(data.measured_times(1, k), TrueTime(k) + 0.75);
    EXPECT_EQ(data.peaks(k).SpectrumAttribs(0, 0).time, data.measured_times(0, k));
    EXPECT_EQ(data.peaks(k).SpectrumAttribs(1, 0).time, data.measured_times(1, k));
    EXPECT_EQ(data.peaks(k).AveragedAttribs(0).time, averaged(k));
  }
}

TEST(StoringAttributes, CopiesFiveFieldsAndNoOther) {
  const PeakAttribs row0{.unused0 = 1.0,
                         .unused8 = 2.0,
                         .unused16 = 3.0,
                         .time = 4.0,
                         .attribute32 = 5.0,
                         .abundance = 6.0,
                         .attribute48 = 7.0,
                         .unused56 = 8.0};
  const PeakAttribs row1{.unused0 = 11.0,
                         .unused8 = 12.0,
                         .unused16 = 13.0,
                         .time = 14.0,
                         .attribute32 = 15.0,
                         .abundance = 16.0,
                         .attribute48 = 17.0,
                         .unused56 = 18.0};
  PeakAttribsTable parsed({0, 1}, {0, 1});
  parsed(0, 1) = row0;
  parsed(1, 1) = row1;
  CalibMassPeakData record;
  record.SpectrumAttribs.ReDim({0, 2}, {0, 1});
  StoreAttributes(parsed, 1, 2, record);
  EXPECT_EQ(record.SpectrumAttribs(2, 0), (PeakAttribs{.time = 4.0, .attribute48 = 7.0}));
  EXPECT_EQ(record.SpectrumAttribs(2, 1),
            (PeakAttribs{.time = 14.0, .attribute32 = 15.0, .abundance = 16.0}));
  EXPECT_EQ(record.SpectrumAttribs(1, 0), PeakAttribs{});
  EXPECT_EQ(ErrorNumberOf([&] { StoreAttributes(parsed, 2, 2, record); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { StoreAttributes(parsed, 1, 3, record); }), 9);
}

TEST_F(AveragedTimes, ReplaceAWindowOfMinusOneInTheCallersVariable) {
  Measure();
  EXPECT_EQ(window, 0.5);
  EXPECT_THAT(host.trace->Texts(), Contains("dPeakFindTimeWindow = 0.5"));
}

TEST_F(AveragedTimes, UseEveryOtherWindowUnchangedAlsoANegativeOne) {
  for (const double given : {0.0, 2.5, -2.0, -0.5}) {
    StartAfresh();
    window = given;
    Measure();
    EXPECT_EQ(window, given);
    EXPECT_THAT(journal.Only({kWindowRead}), IsEmpty());
    EXPECT_THAT(journal.entries(),
                Contains("SpecParser.GetCalibrantPeakAttributes(" + ToText(given) + ")").Times(3));
  }
}

TEST_F(AveragedTimes, LeaveTheWindowToTheParserWithoutASetting) {
  instrument.settings.erase("PeakHandling/PeakFindWindowInPercentT");
  EXPECT_TRUE(Measure().IsArray());
  EXPECT_EQ(window, -1.0);
  EXPECT_THAT(journal.entries(), Contains("SpecParser.GetCalibrantPeakAttributes(-1)").Times(3));
}

TEST_F(AveragedTimes, OfNoSpectraAreZerosBehindOneSpectrum) {
  n_spectra = 0;
  const Variant answer = Measure();
  EXPECT_EQ(answer, Variant(Variant::DoubleArray({0.0, 0.0, 0.0})));
  EXPECT_THAT(AskedBeforeAveraging(), ElementsAre(kWindowRead, kSpectrum));
  EXPECT_THAT(host.trace->Texts(), ElementsAre("dPeakFindTimeWindow = 0.5",
                                               "error[6] in AverageThePeakAttributes(): Overflow"));
}

TEST_F(AveragedTimes, OfANegativeNumberOfSpectraAreEmpty) {
  for (const std::int16_t negative : {std::int16_t{-1}, std::int16_t{-5}, std::int16_t{-32768}}) {
    StartAfresh();
    n_spectra = negative;
    EXPECT_TRUE(Measure().IsEmpty());
    EXPECT_THAT(AskedBeforeAveraging(), IsEmpty());
    EXPECT_EQ(window, -1.0);
    EXPECT_THAT(
        host.trace->Texts(),
        ElementsAre("error[9] in GetAveragedTimesForCalibration(): Subscript out of range"));
  }
}

TEST_F(AveragedTimes, AreEmptyBeforeACalibrationHasStoredItsMasses) {
  data.expected_masses = Variant();
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_THAT(journal.entries(), ::testing::Not(Contains(kSpectrum)));
  EXPECT_EQ(host.trace->Texts().back(),
            "error[13] in GetAveragedTimesForCalibration(): Type mismatch");
}

TEST_F(AveragedTimes, TakeMassesOfEveryKindThatIsANumber) {
  const BoundedArray<double> wanted = {1.0, 622.0, 1521.5};
  const auto variants = [](std::vector<Variant> elements, std::int32_t lower) {
    return Variant(Variant::Array(std::move(elements), lower));
  };
  struct Row {
    const char* what;
    Variant masses;
  };
  // The spectrum is parsed for the rebased doubles: the times tell which.
  for (const Row& row :
       {Row{"doubles from 0", Variant(wanted)},
        Row{"doubles from 5", Variant(Variant::DoubleArray({1.0, 622.0, 1521.5}, 5))},
        Row{"doubles from -3", Variant(Variant::DoubleArray({1.0, 622.0, 1521.5}, -3))},
        Row{"integers and doubles", variants({std::int16_t{1}, std::int32_t{622}, 1521.5}, 1)},
        Row{"numeric text", variants({"1", " 622.0 ", "1.5215E+3"}, 0)}}) {
    StartAfresh();
    masses = row.masses;
    const Variant answer = Measure();
    ASSERT_TRUE(answer.IsArray()) << row.what;
    for (std::int32_t k = 0; k <= 2; ++k) {
      EXPECT_DOUBLE_EQ(AsDoubleArray(answer)(k), instrument.TrueTime(wanted(k))) << row.what;
    }
  }
}

TEST_F(AveragedTimes, TakeABooleanMassForMinusOneOrZero) {
  masses = Variant(Variant::Array({false, 622.0, 1521.5}));
  const Variant answer = Measure();
  EXPECT_DOUBLE_EQ(AsDoubleArray(answer)(0), instrument.TrueTime(0.0));
}

TEST_F(AveragedTimes, RefuseEverythingElseAsMasses) {
  struct Row {
    const char* what;
    Variant masses;
    const char* error;
  };
  constexpr const char* kMismatch = "error[13] in GetAveragedTimesForCalibration(): Type mismatch";
  for (const Row& row :
       {Row{"Empty", Variant(), kMismatch}, Row{"missing", Variant::Missing{}, kMismatch},
        Row{"one number", 622.0, kMismatch}, Row{"text", "622", kMismatch},
        Row{"text inside", Variant(Variant::Array({1.0, "heavy", 3.0})), kMismatch},
        Row{"empty text inside", Variant(Variant::Array({1.0, "", 3.0})), kMismatch},
        Row{"Empty inside", Variant(Variant::Array({1.0, Variant(), 3.0})), kMismatch},
        Row{"missing inside", Variant(Variant::Array({1.0, Variant::Missing{}, 3.0})), kMismatch},
        Row{"an array inside", Variant(Variant::Array({1.0, Variant::DoubleArray({2.0}), 3.0})),
            kMismatch},
        Row{"more than a 16-bit counter counts", Variant(Variant::DoubleArray(0, 32767)),
            "error[6] in GetAveragedTimesForCalibration(): Overflow"}}) {
    StartAfresh();
    masses = row.masses;
    EXPECT_TRUE(Measure().IsEmpty()) << row.what;
    EXPECT_THAT(host.trace->Texts(), ElementsAre("dPeakFindTimeWindow = 0.5", row.error))
        << row.what;
    EXPECT_EQ(instrument.spectra_taken, 0) << row.what;
  }
}

TEST_F(AveragedTimes, AreEmptyWhenAnAbortIsSeenBeforeTheFirstSpectrumIsStored) {
  AnswerAbortFromPoll(0, -1);
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(host.trace->Texts().back(), kAborted);
  EXPECT_THAT(AskedBeforeAveraging(), ElementsAre(kWindowRead, kSpectrum, kIsAborted));
  EXPECT_EQ(data.measured_times(0, 0), 0.0);
  EXPECT_EQ(data.peaks(0).SpectrumAttribs(0, 0), PeakAttribs{});
}

TEST_F(AveragedTimes, TakeEveryAnswerButZeroForAnAbortBeforeASpectrum) {
  for (const std::int16_t answer : {std::int16_t{1}, std::int16_t{-1}, std::int16_t{-2}}) {
    AnswerAbortFromPoll(2, answer);
    EXPECT_TRUE(Measure().IsEmpty());
    EXPECT_EQ(host.trace->Texts().back(), kAborted);
    EXPECT_DOUBLE_EQ(data.measured_times(0, 2), TrueTime(2)) << "the first spectrum stays";
    EXPECT_EQ(data.measured_times(1, 2), 0.0);
  }
}

TEST_F(AveragedTimes, TakeOnlyTheFullTrueForAnAbortBehindASpectrumAndSayItOtherwise) {
  AnswerAbortFromPoll(1, -1);
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(host.trace->Texts().back(),
            "error[1] in GetAveragedTimesForCalibration(): User Aborted.");
  EXPECT_DOUBLE_EQ(data.measured_times(0, 0), TrueTime(0));
  EXPECT_EQ(instrument.spectra_taken, 2);
}

TEST_F(AveragedTimes, MeetAnotherAnswerBehindASpectrumAtTheNextOne) {
  AnswerAbortFromPoll(1, 1);
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(host.trace->Texts().back(), kAborted);
  EXPECT_THAT(AskedBeforeAveraging(),
              ElementsAre(kWindowRead, kSpectrum, kIsAborted, kSpectrum, kIsAborted, kIsAborted));
}

TEST_F(AveragedTimes, DoNotSeeAnotherAnswerBehindTheLastSpectrum) {
  AnswerAbortFromPoll(3, 1);
  EXPECT_TRUE(Measure().IsArray());
}

TEST_F(AveragedTimes, AreEmptyWhenTheSpectrumHoldsFewerMassesThanTheStore) {
  instrument.masses_left_out = 1;
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(host.trace->Texts().back(),
            "error[9] in GetAveragedTimesForCalibration(): Subscript out of range");
  EXPECT_EQ(data.measured_times(0, 0), 0.0);
}

TEST_F(AveragedTimes, AreEmptyWhenTheSpectrumHoldsMoreMassesThanTheStore) {
  masses = Variant::DoubleArray({118.0863, 622.029, 922.0098, 1521.9715});
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(host.trace->Texts().back(),
            "error[9] in GetAveragedTimesForCalibration(): Subscript out of range");
  EXPECT_EQ(data.measured_times(0, 2), instrument.TrueTime(922.0098)) << "what fitted stays";
}

TEST_F(AveragedTimes, AreEmptyWhenThereAreMoreSpectraThanMeasuredTimes) {
  n_spectra = 3;
  EXPECT_TRUE(Measure().IsEmpty());
  EXPECT_EQ(host.trace->Texts().back(),
            "error[9] in GetAveragedTimesForCalibration(): Subscript out of range");
  EXPECT_DOUBLE_EQ(data.measured_times(1, 0), TrueTime(0));
}

TEST_F(AveragedTimes, OfFewerSpectraLeaveTheOtherMeasuredTimesAsTheyWere) {
  data.measured_times(1, 0) = 17.0;
  n_spectra = 1;
  EXPECT_TRUE(Measure().IsArray());
  EXPECT_EQ(data.measured_times(1, 0), 17.0);
}

TEST_F(AveragedTimes, MeasuredTwiceAreNotDoubled) {
  const Variant first = Measure();
  instrument.spectra_taken = 0;
  EXPECT_EQ(Measure(), first);
}

TEST_F(AveragedTimes, SurviveEveryFailureOfTheirAveraging) {
  for (const char* failing : {"Host.CreateFileSystem", "FileSystem.", "TextStream."}) {
    StartAfresh();
    journal.fail_operation = failing;
    const Variant answer = Measure();
    ASSERT_TRUE(answer.IsArray()) << failing;
    EXPECT_DOUBLE_EQ(AsDoubleArray(answer)(1), TrueTime(1)) << failing;
  }
}

TEST_F(AveragedTimes, AreEmptyAndTracedForEveryFailureBeforeTheirAveraging) {
  Variant answer;
  bool averaged = false;
  fakes::FailEachCall(
      journal, [&] { StartAfresh(); }, [&] { answer = Measure(); },
      [&](const std::string& failed) {
        averaged = averaged || failed == kAveraging;
        const bool in_vain = !averaged && failed.rfind("Trace.Exit", 0) != 0;
        EXPECT_EQ(answer.IsEmpty(), in_vain);
        if (in_vain) {
          EXPECT_EQ(host.trace->Texts().back(),
                    "error[4711] in GetAveragedTimesForCalibration(): Injected fault");
        }
        EXPECT_EQ(CurrentModuleState().trace.call_stack.size(), 1U);
      });
  EXPECT_TRUE(averaged);
}

// It measures the expected masses: what is passed is not looked at.
TEST_F(AveragedTimes, OfTheAbundanceImmuneRoutineTakeNothingFromTheArgument) {
  instrument.settings["Calibration/AIC_RF_LowValue"] = 20.0;
  instrument.settings["Calibration/AIC_RF_HighValue"] = 24.0;
  instrument.settings["Calibration/AIC_RF_Step"] = 2.0;
  data.ab_scalars = BoundedArray<double>{1.0, 1.0, 1.0};
  const Variant expected = Measure(true);
  ASSERT_TRUE(expected.IsArray());
  for (const Variant& unread : {Variant(), Variant(Variant::Missing{}), Variant("text"),
                                Variant(Variant::DoubleArray(0, 32767))}) {
    StartAfresh();
    masses = unread;
    EXPECT_EQ(Measure(true), expected);
    EXPECT_EQ(window, 0.5) << "written back all the same";
  }
}

TEST_F(AveragedTimes, AreLeftToTheAbundanceImmuneRoutineWhenThatIsEnabled) {
  Measure(true);
  const Calls& lines = host.trace->lines;
  ASSERT_GE(lines.size(), 6U);
  EXPECT_THAT(Calls(lines.begin(), lines.begin() + 6),
              ElementsAre("Entry GetAveragedTimesForCalibration 9", "Entry InitializeTimesArray 9",
                          "Exit InitializeTimesArray 9",
                          "GetAveragedTimesForCalibration 9: dPeakFindTimeWindow = 0.5",
                          "GetAveragedTimesForCalibration 9: Going to be saving to "
                          "varAveragedMeasuredTimes",
                          "Entry GetTimeSpannedCalibrantPeakTimes 9"));
  EXPECT_EQ(lines.back(), "Exit GetAveragedTimesForCalibration 9");
  EXPECT_EQ(window, 0.5);

  const Calls calls = journal.entries();
  const auto handed_over =
      std::find(calls.begin(), calls.end(), "Trace.Entry(GetTimeSpannedCalibrantPeakTimes,9)");
  EXPECT_THAT(Calls(calls.begin(), handed_over), ::testing::Not(Contains(kSpectrum)));
}

}  // namespace
}  // namespace tof
