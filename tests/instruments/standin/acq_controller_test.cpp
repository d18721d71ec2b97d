#include <gtest/gtest.h>

#include "component/automation/error.h"
#include "tests/component/error_number_of.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

TEST(StandInAcqController, IsAbortedWhenTheHostAsksForIt) {
  TestInstrument test;
  const auto controller = test.instrument.CreateAcqController();
  EXPECT_EQ(controller->IsAbortRequested(), 0);
  test.instrument.RequestAbort();
  EXPECT_EQ(controller->IsAbortRequested(), -1);
}

TEST(StandInAcqController, IsAbortedWhenItsTimeHasCome) {
  TestInstrument test(description::BuiltInDescription(), {.abort_after_sec = 2.5});
  const auto controller = test.instrument.CreateAcqController();
  test.clock->Advance(2.0);
  EXPECT_EQ(controller->IsAbortRequested(), 0);
  test.clock->Advance(0.5);
  EXPECT_EQ(controller->IsAbortRequested(), -1);
}

TEST(StandInAcqController, IsAbortedAtATimeThatIsPlannedLaterUntilThatIsTakenBack) {
  TestInstrument test;
  const auto controller = test.instrument.CreateAcqController();
  test.clock->Advance(2.0);
  test.instrument.PlanAbort(1.5);
  EXPECT_EQ(controller->IsAbortRequested(), -1);
  test.instrument.PlanAbort({});
  EXPECT_EQ(controller->IsAbortRequested(), 0);
}

TEST(StandInAcqController, FailsTheCallThatIsPlannedFromNowOn) {
  TestInstrument test;
  const auto controller = test.instrument.CreateAcqController();
  controller->GetCurrentA();
  test.instrument.FailCall(Operation::kAcqControllerGetCurrentA, 2);
  controller->GetCurrentA();
  EXPECT_EQ(ErrorNumberOf([&] { controller->GetCurrentA(); }), 440);
  test.instrument.FailCall(Operation::kAcqControllerGetCurrentA, 1);
  test.instrument.WithdrawFailures();
  EXPECT_EQ(ErrorNumberOf([&] { controller->GetCurrentA(); }), 0);
}

TEST(StandInAcqController, GivesObjectsWhoseNextFitsAreBadAsPlanned) {
  TestInstrument test;
  test.instrument.MakeFitsBad(1);
  const auto coefficients = test.instrument.CreateAcqController()->GetCurrentMassCalObject();
  const auto fitted_a = [&] {
    coefficients->Calibrate({100.0, 400.0, 900.0}, {10e3, 20e3, 30e3});
    return coefficients->GetCoefficientRecord()[0];
  };
  EXPECT_NEAR(fitted_a(), 0.0011, 1e-12);
  EXPECT_NEAR(fitted_a(), 0.001, 1e-12);
}

TEST(StandInAcqController, SeedsTheCurrentObjectWithTheStartingValues) {
  auto description = description::BuiltInDescription();
  description.factory_coefficients = {0.0006, 310.0, 0.25};
  TestInstrument test(description);
  const auto controller = test.instrument.CreateAcqController();
  EXPECT_EQ(controller->GetCurrentMassCalObject()->GetCoefficientRecord(),
            description.factory_coefficients);

  controller->SetLikelyAAndT0(0.65, 0.3);  // per us, us
  const CoefficientRecord seeded = controller->GetCurrentMassCalObject()->GetCoefficientRecord();
  EXPECT_DOUBLE_EQ(seeded[0], 0.00065);
  EXPECT_DOUBLE_EQ(seeded[1], 300.0);
  EXPECT_EQ(seeded[2], 0.0);
  EXPECT_EQ(controller->GetCurrentA(), 0.0006);
}

TEST(StandInAcqController, PutsACopyInForceAndForgetsTheStartingValues) {
  TestInstrument test;
  const auto controller = test.instrument.CreateAcqController();
  const auto coefficients = controller->GetCurrentMassCalObject();
  coefficients->Calibrate({100.0, 400.0, 900.0}, {10e3, 20e3, 30e3});
  controller->SetLikelyAAndT0(0.9, 0.0);
  controller->SetCalibCoefficients(coefficients);
  EXPECT_NEAR(controller->GetCurrentA(), 0.001, 1e-12);
  EXPECT_NEAR(controller->GetCurrentMassCalObject()->GetCoefficientRecord()[0], 0.001, 1e-12);

  coefficients->Calibrate({100.0, 400.0, 900.0}, {20e3, 40e3, 60e3});
  EXPECT_NEAR(controller->GetCurrentA(), 0.001, 1e-12);
}

TEST(StandInAcqController, RefusesToPutNoneInForce) {
  TestInstrument test;
  const auto controller = test.instrument.CreateAcqController();
  EXPECT_EQ(ErrorNumberOf([&] { controller->SetCalibCoefficients(nullptr); }), 91);
}

TEST(StandInAcqController, HasDefaultsOnlyWhenTheDescriptionHas) {
  auto description = description::BuiltInDescription();
  description.default_coefficients = CoefficientRecord{0.0007, 1.0};
  TestInstrument with(description);
  EXPECT_EQ(with.instrument.CreateAcqController()
                ->GetDefaultCalibCoefficients()
                ->GetCoefficientRecord()[0],
            0.0007);
  description.default_coefficients.reset();
  TestInstrument without(description);
  EXPECT_EQ(without.instrument.CreateAcqController()->GetDefaultCalibCoefficients(), nullptr);
}

TEST(StandInAcqController, GivesCoefficientsTheDescribedWeighting) {
  auto description = description::BuiltInDescription();
  description.trad_weighting = masstime::Weighting::kFlightTime;
  description.poly_weighting = masstime::Weighting::kAbsoluteMass;
  TestInstrument test(description);
  const CalInfo info =
      test.instrument.CreateAcqController()->GetCurrentMassCalObject()->GetCalInfo();
  EXPECT_EQ(info.TradWeighting, 1);
  EXPECT_EQ(info.PolyWeighting, 2);
}

TEST(StandInAcqController, GivesTheCalibrantListOfTheSetpoint) {
  TestInstrument test;
  const auto controller = test.instrument.CreateAcqController();
  EXPECT_EQ(controller->GetCalibrantMasses(0, "", "").size(), 10u);
  EXPECT_EQ(ErrorNumberOf([&] { controller->GetCalibrantMasses(1, "", ""); }), 5);
}

TEST(StandInAcqController, MeasuresTheBinsOfItsSpectra) {
  TestInstrument test;
  EXPECT_EQ(test.instrument.CreateAcqController()->GetCurrentMassCalObject()->GetBinWidth(), 0.25);
}

}  // namespace
}  // namespace tof::standin
