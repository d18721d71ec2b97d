#include "component/calibration/coefficient_verification.h"

#include <limits>

#include "tests/component/calibration/calibration_calls.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using ::testing::ElementsAreArray;
using ::testing::Property;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A within 25 per cent of 1, t0 between 150 and 450 ns; all bounds are exact in binary.
constexpr CoefficientLimits kLimits{.nominal_a = 1.0,
                                    .allowed_a_fraction = 0.25,
                                    .nominal_t0_us = 0.25,
                                    .allowed_t0_fraction = 0.5};

struct PlausibilityCase {
  const char* name;
  std::size_t index;  // of the coefficient that is changed
  double value;
  bool plausible;
};

class Plausibility : public ::testing::TestWithParam<PlausibilityCase> {};

TEST_P(Plausibility, IsDecidedByEveryCoefficient) {
  CoefficientRecord record{1.0, 250.0};
  record[GetParam().index] = GetParam().value;
  EXPECT_EQ(CoefficientsArePlausible(record, kLimits), GetParam().plausible);
}

INSTANTIATE_TEST_SUITE_P(Cases, Plausibility,
                         ::testing::Values(PlausibilityCase{"NominalA", 0, 1.0, true},
                                           PlausibilityCase{"AInsideBelow", 0, 0.7500001, true},
                                           PlausibilityCase{"AOnTheLowerBound", 0, 0.75, false},
                                           PlausibilityCase{"AOnTheUpperBound", 0, 1.25, false},
                                           PlausibilityCase{"NaNA", 0, kNaN, false},
                                           PlausibilityCase{"T0InsideAbove", 1, 374.9999, true},
                                           PlausibilityCase{"T0OnTheLowerBound", 1, 125.0, false},
                                           PlausibilityCase{"T0OnTheUpperBound", 1, 375.0, false},
                                           PlausibilityCase{"NaNT0", 1, kNaN, false},
                                           PlausibilityCase{"CInside", 2, -0.9999999, true},
                                           PlausibilityCase{"COnTheBound", 2, 1.0, false},
                                           PlausibilityCase{"DOnTheBound", 3, -1.0, false},
                                           PlausibilityCase{"EOnTheBound", 4, 1.0, false},
                                           PlausibilityCase{"FOnTheBound", 5, 1.0, false},
                                           PlausibilityCase{"GOnTheBound", 6, 1.0, false},
                                           PlausibilityCase{"HOnTheBound", 7, 1.0, false},
                                           PlausibilityCase{"NaNH", 7, kNaN, false}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(CoefficientPlausibility, NoT0PassesAFractionOfZero) {
  CoefficientLimits limits = kLimits;
  limits.allowed_t0_fraction = 0.0;
  EXPECT_FALSE(CoefficientsArePlausible({1.0, 250.0}, limits));
}

TEST(CoefficientPlausibility, ANegativeNominalT0NeedsANegativeFraction) {
  CoefficientLimits limits = kLimits;
  limits.nominal_t0_us = -0.25;
  EXPECT_FALSE(CoefficientsArePlausible({1.0, -250.0}, limits));
  limits.allowed_t0_fraction = -0.5;
  EXPECT_TRUE(CoefficientsArePlausible({1.0, -250.0}, limits));
}

TEST(CoefficientPlausibility, NothingPassesANegativeNominalA) {
  CoefficientLimits limits = kLimits;
  limits.nominal_a = -1.0;
  EXPECT_FALSE(CoefficientsArePlausible({-1.0, 250.0}, limits));
}

TEST(CoefficientPlausibility, NothingPassesALimitThatIsNoNumber) {
  for (double CoefficientLimits::*limit :
       {&CoefficientLimits::nominal_a, &CoefficientLimits::allowed_a_fraction,
        &CoefficientLimits::nominal_t0_us, &CoefficientLimits::allowed_t0_fraction}) {
    CoefficientLimits limits = kLimits;
    limits.*limit = kNaN;
    EXPECT_FALSE(CoefficientsArePlausible({1.0, 250.0}, limits));
  }
}

class Verification : public fakes::CalibrationFixture {
 protected:
  bool Verify(const CoefficientRecord& record) {
    coefficients->record = record;
    Instrument parts = Collaborators();
    return Calibration_VerifyCalibCoefficients(parts, coefficients);
  }
  std::shared_ptr<fakes::FakeCoefficients> coefficients =
      std::make_shared<fakes::FakeCoefficients>(journal);
};

TEST_F(Verification, ReadsItsLimitsInThisOrderAndAnnouncesNothing) {
  EXPECT_TRUE(Verify({instrument.in_force->record[0], 300.0}));
  EXPECT_THAT(journal.entries(), ElementsAreArray(fakes::CoefficientsVerified()));
}

TEST_F(Verification, ReadsNothingWhenItIsSwitchedOff) {
  instrument.flags["Calibration_VerifyCalibCoefficients"] = "No";
  EXPECT_TRUE(Verify({kNaN, kNaN}));
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(fakes::FlagRead("Calibration_VerifyCalibCoefficients")));
}

TEST_F(Verification, RunsOnAnyOtherTextOfItsSwitch) {
  instrument.flags["Calibration_VerifyCalibCoefficients"] = "no";
  EXPECT_FALSE(Verify({kNaN, kNaN}));
}

TEST_F(Verification, TakesTheWiderLimitOfTheFpsMode) {
  const double a = instrument.in_force->record[0] * 1.025;
  EXPECT_FALSE(Verify({a, 300.0}));
  instrument.setpoints[162] = true;
  EXPECT_TRUE(Verify({a, 300.0}));
  EXPECT_EQ(journal.entries().back(),
            "CalibSettings.GetValue(Calibration/TargetAPercentError_FPS,0)");
}

TEST_F(Verification, RaisesWhatACollaboratorRaises) {
  journal.fail_operation = "AcqController.GetCurrentA";
  EXPECT_THAT(
      [&] {
        Verify({0.00065, 300.0});
      },
      ::testing::Throws<AutomationError>(
          Property(&AutomationError::number, fakes::kInjectedNumber)));
}

TEST_F(Verification, RefusesATextThatIsNoT0) {
  instrument.flags["Calibration_t0ToUseToStartLookingforA_usec"] = "";
  EXPECT_THAT(
      [&] {
        Verify({0.00065, 300.0});
      },
      ::testing::Throws<AutomationError>(Property(&AutomationError::number, 13)));
}

class Defaults : public fakes::CalibrationFixture {};

TEST_F(Defaults, ArePutInForce) {
  host.trace->on = false;
  Instrument parts = Collaborators();
  LoadDefaultCalibCoefficients(parts);
  EXPECT_EQ(instrument.in_force, instrument.defaults);
  EXPECT_THAT(journal.entries(), ElementsAreArray({"AcqController.GetDefaultCalibCoefficients",
                                                   "AcqController.SetCalibCoefficients"}));
}

TEST_F(Defaults, AreEmptyCoefficientsWhenTheInstrumentHasNone) {
  host.trace->on = false;
  instrument.defaults = nullptr;
  Instrument parts = Collaborators();
  LoadDefaultCalibCoefficients(parts);
  EXPECT_EQ(instrument.in_force->record, CoefficientRecord{});
  EXPECT_THAT(journal.entries(), ElementsAreArray({"AcqController.GetDefaultCalibCoefficients",
                                                   "Create.MassCalCoefficients",
                                                   "AcqController.SetCalibCoefficients"}));
}

TEST_F(Defaults, AreAnnouncedAtLevelFourAndRaiseWithoutALine) {
  Instrument parts = Collaborators();
  journal.fail_operation = "AcqController.SetCalibCoefficients";
  EXPECT_THAT([&] { LoadDefaultCalibCoefficients(parts); },
              ::testing::Throws<AutomationError>(
                  Property(&AutomationError::number, fakes::kInjectedNumber)));
  EXPECT_THAT(host.trace->lines, ::testing::ElementsAre("Entry LoadDefaultCalibCoefficients 4",
                                                        "Exit LoadDefaultCalibCoefficients 4"));
}

}  // namespace
}  // namespace tof
