#include "component/aic/point_collection.h"

#include "tests/component/error_number_of.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::InOrder;
using fakes::Repeated;
using fakes::RfWritten;
using fakes::SpectrumTaken;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

const Calls kFlag = {"TuneFlags.GetFlag(ObfuscateCalibAlg,-1)"};
const std::string kByMassName = "CollectAdditionalPointsForPurposesOfAveraging_byMass";
const std::string kByMeasurementName =
    "CollectAdditionalPointsForPurposesOfAveraging_byMeasurement";

class CollectingPoints : public fakes::AicFixture {
 protected:
  CollectingPoints() {
    ChooseVoltages({80.0, 70.5, 60.0});
    instrument.abundance_at = [](double mass, double volts) {
      return 1000.0 * volts + mass + 0.25;
    };
  }
  void ByMass() {
    CollectAdditionalPointsForPurposesOfAveraging_byMass(parts, host, Rf(), data.expected_masses,
                                                         log, data.peaks, window);
  }
  void ByMeasurement() {
    CollectAdditionalPointsForPurposesOfAveraging_byMeasurement(
        parts, host, Rf(), data.expected_masses, log, data.peaks, window);
  }
  double TimeOf(std::int32_t mass, std::int32_t measurement) const {
    return data.peaks(mass).SpectrumAttribs(measurement, 0).time;
  }

  double window = 0.75;
};

TEST_F(CollectingPoints, ByMassSetsOnceSettlesFourTimesAndTakesAllMeasurements) {
  ByMass();
  const auto one_mass = [](const std::string& volts) {
    return InOrder({kFlag, RfWritten(volts), Repeated(4, fakes::kSettled),
                    Repeated(2, SpectrumTaken("0.75"))});
  };
  EXPECT_THAT(
      CallsMade(),
      ElementsAreArray(InOrder({one_mass("80"), one_mass("70.5"), one_mass("60"), Logged(6)})));
  EXPECT_EQ(RfValue(), 60.0);
}

TEST_F(CollectingPoints, ByMeasurementSetsAndSettlesOnceBeforeEverySpectrum) {
  ByMeasurement();
  const auto one_point = [](const std::string& volts) {
    return InOrder({kFlag, RfWritten(volts), fakes::kSettled, SpectrumTaken("0.75")});
  };
  const Calls measurement = InOrder({one_point("80"), one_point("70.5"), one_point("60")});
  EXPECT_THAT(CallsMade(), ElementsAreArray(InOrder({Repeated(2, measurement), Logged(6)})));
}

TEST_F(CollectingPoints, ByMassLogsTimesAndAbundancesOfEachMass) {
  instrument.spectrum_shift_ns = {0.5, 0.0, 0.125};
  ByMass();
  EXPECT_EQ(Log(),
            "\r\n"
            "Collecting tofs for Averaging...\r\n"
            "TOFs [MassIdx, OctRF voltage, tofs]\r\n"
            "0, 80, 10300.5, 10300\r\n"
            "1, 70.5, 20300.125, 20300\r\n"
            "2, 60, 30300, 30300\r\n"
            "\r\n"
            "Abundances [MassIdx, OctRF voltage, Abundances]\r\n"
            "0, 80, 80100.25, 80100.25\r\n"
            "1, 70.5, 70900.25, 70900.25\r\n"
            "2, 60, 60900.25, 60900.25\r\n"
            "\r\n");
}

TEST_F(CollectingPoints, ByMeasurementLogsTimesOfEachMassAndAbundancesOfEachMeasurement) {
  instrument.spectrum_shift_ns = {0.5, 0.0, 0.125};
  ByMeasurement();
  EXPECT_EQ(Log(),
            "\r\n"
            "Collecting additional tofs for Averaging...\r\n"
            "TOFs [MassIdx, OctRF voltage, TOFs]\r\n"
            "0, 80, 10300.5, 10300\r\n"
            "1, 70.5, 20300, 20300\r\n"
            "2, 60, 30300.125, 30300\r\n"
            "\r\n"
            "Abundances [MeasurementIdx, Abundances (in massIdx order)]\r\n"
            "0, 80100.25, 70900.25, 60900.25\r\n"
            "1, 80100.25, 70900.25, 60900.25\r\n"
            "\r\n");
}

TEST_F(CollectingPoints, StoresTheAttributesOfTheMassWhoseVoltageIsSet) {
  ByMass();
  const CalibMassPeakData& record = data.peaks(1);
  for (std::int32_t k = 0; k < 2; ++k) {
    EXPECT_EQ(record.SpectrumAttribs(k, 0),
              (PeakAttribs{.time = 20300.0, .attribute48 = 20300.0 / 40000.0}));
    EXPECT_DOUBLE_EQ(record.SpectrumAttribs(k, 1).time, 400.0);
    EXPECT_EQ(record.SpectrumAttribs(k, 1).attribute32, record.SpectrumAttribs(k, 1).time - 400.0);
    EXPECT_EQ(record.SpectrumAttribs(k, 1).abundance, 1070900.25) << "that of row 1";
  }
}

TEST_F(CollectingPoints, ChangesNeitherVoltagesNorAbundances) {
  data.peaks(1).Abundance = 123;
  ByMass();
  ByMeasurement();
  EXPECT_THAT(ChosenVoltages(), ElementsAre(80.0, 70.5, 60.0));
  EXPECT_THAT(ChosenAbundances(), ElementsAre(0, 123, 0));
}

TEST_F(CollectingPoints, OneEachStoresTheSameBothWaysFromOneSpectrumAMass) {
  SizeFor(1);
  ChooseVoltages({80.0, 70.5, 60.0});
  ByMass();
  const PeakTable by_mass = data.peaks;
  EXPECT_EQ(instrument.spectra_taken, 3);
  SizeFor(1);
  ChooseVoltages({80.0, 70.5, 60.0});
  ByMeasurement();
  EXPECT_EQ(instrument.spectra_taken, 6);
  for (std::int32_t m = 0; m < 3; ++m) {
    EXPECT_EQ(by_mass(m).SpectrumAttribs, data.peaks(m).SpectrumAttribs) << "mass " << m;
  }
}

TEST_F(CollectingPoints, ReplacesAWindowOfMinusOneInTheCallersVariable) {
  window = -1.0;
  ByMass();
  EXPECT_EQ(window, 0.5);
  EXPECT_EQ(CallsMade().front(), "CalibSettings.GetValue(PeakHandling/PeakFindWindowInPercentT,0)");
  EXPECT_EQ(NumberOf("SpecParser.GetCalibrantPeakAttributes(0.5)"), 6U);
  window = -1.0;
  ByMeasurement();
  EXPECT_EQ(window, 0.5);
  EXPECT_EQ(NumberOf("SpecParser.GetCalibrantPeakAttributes(0.5)"), 12U);
}

TEST_F(CollectingPoints, TracesTheWindowUsed) {
  window = -1.0;
  ByMass();
  window = 0.0;
  ByMeasurement();
  EXPECT_THAT(
      host.trace->lines,
      ElementsAre("Entry " + kByMassName + " 9", kByMassName + " 9: dPeakFindTimeWindow = 0.5",
                  "Exit " + kByMassName + " 9", "Entry " + kByMeasurementName + " 9",
                  kByMeasurementName + " 9: dPeakFindTimeWindow = 0",
                  "Exit " + kByMeasurementName + " 9"));
}

TEST_F(CollectingPoints, NeverShowsTheSpectrumByMass) {
  instrument.flags["ObfuscateCalibAlg"] = "2";
  SizeFor(10);
  ByMass();
  EXPECT_EQ(NumberOf("SpectrumDisplay."), 0U);
}

TEST_F(CollectingPoints, ShowsTheSpectrumBeforeEveryFifthByMeasurement) {
  instrument.flags["ObfuscateCalibAlg"] = "2";
  SizeFor(5);
  ByMeasurement();
  const Calls shown = {"SpectrumDisplay.SetDisplayUpdate(True)",
                       "SpectrumDisplay.SetDisplayUpdate(False)"};
  const Calls five = InOrder({Repeated(4, SpectrumTaken("0.75")), shown, SpectrumTaken("0.75")});
  EXPECT_THAT(journal.Only({"SpecParser.", "SpectrumDisplay."}),
              ElementsAreArray(Repeated(3, five)));
}

TEST_F(CollectingPoints, WritesBareLinesForNoMeasurements) {
  SizeFor(0);
  ChooseVoltages({80.0, 70.5, 60.0});
  ByMass();
  EXPECT_THAT(Log(), HasSubstr("tofs]\r\n0, 80\r\n1, 70.5\r\n2, 60\r\n\r\nAbundances"));
  EXPECT_EQ(instrument.spectra_taken, 0);
}

TEST_F(CollectingPoints, ByMassWritesEmptyTextsWithoutMasses) {
  data.peaks.ReDim(0, -1, IfEmpty::kIsAllowed);
  ByMass();
  EXPECT_EQ(Log(),
            "\r\nCollecting tofs for Averaging...\r\nTOFs [MassIdx, OctRF voltage, tofs]\r\n\r\n"
            "Abundances [MassIdx, OctRF voltage, Abundances]\r\n\r\n");
  EXPECT_EQ(ErrorNumberOf([&] { ByMeasurement(); }), 9) << "whose measurements are mass 0's";
}

// The two ways of working have the same policy.
class CollectingPointsEitherWay : public CollectingPoints,
                                  public ::testing::WithParamInterface<bool> {
 protected:
  const std::string& Name() const { return GetParam() ? kByMassName : kByMeasurementName; }
  std::int32_t CollectAndTakeError() {
    return ErrorNumberOf([&] { GetParam() ? ByMass() : ByMeasurement(); });
  }
};

TEST_P(CollectingPointsEitherWay, UsesEveryWindowButMinusOneUnchanged) {
  for (const double other : {-1.5, 0.0, 3.0}) {
    window = other;
    journal.Clear();
    EXPECT_EQ(CollectAndTakeError(), 0);
    EXPECT_EQ(window, other);
    EXPECT_EQ(NumberOf("CalibSettings."), 0U);
    EXPECT_EQ(NumberOf(SpectrumTaken(NumberText(other)).front()), 6U);
  }
}

// By mass there is no wait, and so no look at the abort, between the measurements of a mass.
TEST_P(CollectingPointsEitherWay, PassesAnAbortOnWithoutALogText) {
  host.on_messages = [&] {
    if (instrument.spectra_taken > 0) instrument.abort_requested = -1;
  };
  EXPECT_EQ(CollectAndTakeError(), 1);
  EXPECT_EQ(LastTrace(), "error[1] in " + Name() + "(): User aborted");
  EXPECT_EQ(TimeOf(0, 0), 10300.0);
  EXPECT_EQ(Log(), "");
}

TEST_P(CollectingPointsEitherWay, EndsAtAMassWithFewerMeasurementsThanMassZero) {
  data.peaks(1).SpectrumAttribs.ReDim({0, 0}, {0, 1});
  EXPECT_EQ(CollectAndTakeError(), 9);
  EXPECT_EQ(LastTrace(), "error[9] in " + Name() + "(): Subscript out of range");
  EXPECT_EQ(TimeOf(0, 0), 10300.0);
  EXPECT_EQ(TimeOf(1, 0), 20300.0);
  EXPECT_EQ(Log(), "");
}

TEST_P(CollectingPointsEitherWay, TakesTheNumberOfMeasurementsFromMassZero) {
  data.peaks(1).SpectrumAttribs.ReDim({0, 4}, {0, 1});
  EXPECT_EQ(CollectAndTakeError(), 0);
  EXPECT_EQ(TimeOf(1, 1), 20300.0);
  EXPECT_EQ(TimeOf(1, 2), 0.0);
}

TEST_P(CollectingPointsEitherWay, EndsAtAMassWithoutMeasurements) {
  data.peaks(2).SpectrumAttribs = {};
  EXPECT_EQ(CollectAndTakeError(), 9);
}

TEST_P(CollectingPointsEitherWay, EndsAtOnceWithoutMasses) {
  data.peaks = {};
  EXPECT_EQ(CollectAndTakeError(), 9);
  EXPECT_EQ(instrument.spectra_taken, 0);
}

TEST_P(CollectingPointsEitherWay, TracesAndPassesOnEveryFailure) {
  std::int32_t raised = 0;
  fakes::FailEachCall(
      journal, [] {}, [&] { raised = CollectAndTakeError(); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(raised, fakes::kInjectedNumber);
        EXPECT_EQ(LastTrace(), "error[4711] in " + Name() + "(): Injected fault");
      });
}

INSTANTIATE_TEST_SUITE_P(Ways, CollectingPointsEitherWay, ::testing::Bool(),
                         [](const auto& way) { return way.param ? "ByMass" : "ByMeasurement"; });

}  // namespace
}  // namespace tof
