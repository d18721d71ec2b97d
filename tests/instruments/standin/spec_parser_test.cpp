#include <gtest/gtest.h>

#include <cmath>

#include "component/automation/error.h"
#include "instruments/virtual/flight_time.h"
#include "tests/component/error_number_of.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

const Variant kThreeMasses(BoundedArray<double>{362.926338, 498.901186, 702.863456});

TEST(StandInSpecParser, FillsBothRowsOfACalibrant) {
  TestInstrument test;
  const PeakAttribsTable table =
      test.instrument.CreateSpecParser()->GetCalibrantPeakAttributes(kThreeMasses, 0.1);
  EXPECT_EQ(table.UBound(1), 1);
  EXPECT_EQ(table.UBound(2), 2);
  const PeakAttribs& row0 = table(0, 1);
  const PeakAttribs& row1 = table(1, 1);
  const auto coefficients = test.instrument.CreateAcqController()->GetCurrentMassCalObject();
  EXPECT_NEAR(row0.time, 300.0 + std::sqrt(498.901186) / 0.00065, 1.0);
  EXPECT_NEAR(row0.attribute48, row0.time / 40'000.0, 0.2);
  EXPECT_DOUBLE_EQ(row1.time, coefficients->TimeToMass(row0.time));
  EXPECT_DOUBLE_EQ(row1.attribute32, (row1.time - 498.901186) / 498.901186 * 1e6);
  EXPECT_GT(row0.abundance, 0.0);
  EXPECT_EQ(row0.abundance, row1.abundance);
}

TEST(StandInSpecParser, NeverGuessesACalibrantThatIsNotThere) {
  TestInstrument test;
  const Variant masses(BoundedArray<double>{498.901186, 600.0, 702.863456});
  const PeakAttribsTable table =
      test.instrument.CreateSpecParser()->GetCalibrantPeakAttributes(masses, 0.2);
  for (std::int32_t row : {0, 1}) {
    PeakAttribs absent = table(row, 1);
    EXPECT_TRUE(std::isnan(absent.time));
    absent.time = 0.0;
    EXPECT_EQ(absent, PeakAttribs{});
  }
  EXPECT_FALSE(std::isnan(table(0, 0).time));
}

TEST(StandInSpecParser, AcquiresASpectrumForCalibrantsAlone) {
  TestInstrument test;
  const auto parser = test.instrument.CreateSpecParser();
  std::int32_t count = 0;
  std::shared_ptr<PeakList> list;
  parser->FindPeaks(12e3, 72e3, 10, count, list);
  parser->GetPeakAttribute(PeakCalculationtype::abund, 498.9, 0.2);
  EXPECT_EQ(test.instrument.Counted().spectra, 0);
  EXPECT_EQ(test.clock->Seconds(), 0.0);
  parser->GetCalibrantPeakAttributes(kThreeMasses, 0.1);
  EXPECT_EQ(test.instrument.Counted().spectra, 1);
  EXPECT_EQ(test.clock->Seconds(), 1.0);
}

TEST(StandInSpecParser, FindsPeaksInAscendingTime) {
  TestInstrument test;
  std::int32_t count = 0;
  std::shared_ptr<PeakList> list;
  test.instrument.CreateSpecParser()->FindPeaks(12e3, 72e3, 10, count, list);
  ASSERT_EQ(count, 10);
  ASSERT_EQ(list->Count(), 10);
  for (std::int32_t i = 1; i < count; ++i) {
    EXPECT_LT(list->GetRecord(i - 1).position, list->GetRecord(i).position);
    EXPECT_GT(list->GetRecord(i).height, 0.0);
  }
}

TEST(StandInSpecParser, ReadsAnAbundanceAnewEachTime) {
  TestInstrument test;
  const auto parser = test.instrument.CreateSpecParser();
  const auto read = [&](double mass) {
    return parser->GetPeakAttribute(PeakCalculationtype::abund, mass, 2.0);
  };
  const double first = read(498.9);
  const double second = read(498.9);
  EXPECT_NE(first, second);  // ions are counted
  EXPECT_NEAR(first / second, 1.0, 0.3);
  EXPECT_EQ(read(600.0), 0.0);
}

TEST(StandInSpecParser, LooksWhereTheStartingValuesSay) {
  auto description = description::BuiltInDescription();
  description.factory_coefficients = {0.0008, 0.0};  // nowhere near
  TestInstrument test(description);
  const auto parser = test.instrument.CreateSpecParser();
  test.instrument.CreateAcqController()->SetLikelyAAndT0(0.65, 0.3);
  EXPECT_NEAR(parser->GetCalibrantPeakAttributes(kThreeMasses, 0.1)(0, 1).time,
              300.0 + std::sqrt(498.901186) / 0.00065, 1.0);
}

TEST(StandInSpecParser, TurnsARefusalIntoAnErrorOfTheAutomationRules) {
  TestInstrument test;
  const auto parser = test.instrument.CreateSpecParser();
  std::int32_t count = 0;
  std::shared_ptr<PeakList> list;
  EXPECT_EQ(ErrorNumberOf([&] { parser->FindPeaks(12e3, 72e3, -1, count, list); }), 5);
  EXPECT_EQ(ErrorNumberOf([&] { parser->GetCalibrantPeakAttributes(kThreeMasses, std::nan("")); }),
            5);
  EXPECT_EQ(ErrorNumberOf([&] { parser->GetCalibrantPeakAttributes(Variant("x"), 0.1); }), 13);
}

TEST(StandInSpecParser, FailsWithAGainChannelThatTheDetectorDoesNotHave) {
  TestInstrument test;
  test.instrument.CreateDataDictionary()->GetSetpointTable()->SetSetpoint(149, ValueType::kInt16,
                                                                          Variant(std::int16_t{3}));
  const auto parser = test.instrument.CreateSpecParser();
  EXPECT_EQ(ErrorNumberOf([&] { parser->GetCalibrantPeakAttributes(kThreeMasses, 0.1); }), 5);
}

TEST(StandInSpecParser, AllowsAicOnlyWhereSetpointsMoveTheSpectra) {
  TestInstrument test;
  double width = 10.0;
  EXPECT_FALSE(test.instrument.CreateSpecParser()->ShouldAvoidAIC(kThreeMasses, width));
  EXPECT_EQ(width, 10.0);
}

}  // namespace
}  // namespace tof::standin
