// The comparison of A with its limits, to the last bit.
#include "component/calibration/coefficient_verification.h"

#include "tests/component/calibration/calibration_calls.h"
#include "tests/component/error_number_of.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

struct LimitCase {
  const char* name;
  double nominal_a;
  double allowed_fraction;
  double a;
  bool plausible;
};

class PlausibilityOfA : public ::testing::TestWithParam<LimitCase> {};

TEST_P(PlausibilityOfA, IsRoundedAsItIsDefined) {
  const CoefficientLimits limits{.nominal_a = GetParam().nominal_a,
                                 .allowed_a_fraction = GetParam().allowed_fraction,
                                 .nominal_t0_us = 0.25,
                                 .allowed_t0_fraction = 0.5};
  EXPECT_EQ(CoefficientsArePlausible({GetParam().a, 250.0}, limits), GetParam().plausible);
}

// Each is decided otherwise when one product is left unrounded or rounded in another order.
INSTANTIATE_TEST_SUITE_P(
    Cases, PlausibilityOfA,
    ::testing::Values(LimitCase{"ToleranceRoundedUp", 0.00053227829170028954, 0.13172683598357141,
                                0.00060239362692870915, true},
                      LimitCase{"ToleranceRoundedDown", 0.0005131178761320868, 0.26698360417522987,
                                0.00037612381619560315, false},
                      LimitCase{"NominalRoundedTowardsA", 0.00075941196203290157,
                                0.2648557120740897, 0.00096054655799470735, true},
                      LimitCase{"NominalRoundedAwayFromA", 0.00075941196203290157,
                                0.2648557120740897, 0.00055827736607109589, false}),
    [](const auto& one) { return std::string(one.param.name); });

struct T0Case {
  const char* name;
  double t0_ns;
  bool plausible;
};

class PlausibilityOfT0 : public ::testing::TestWithParam<T0Case> {};

TEST_P(PlausibilityOfT0, EndsStrictlyAtEitherBound) {
  // From 125 to 375 ns, both exact in binary.
  const CoefficientLimits limits{.nominal_a = 1.0,
                                 .allowed_a_fraction = 0.25,
                                 .nominal_t0_us = 0.25,
                                 .allowed_t0_fraction = 0.5};
  EXPECT_EQ(CoefficientsArePlausible({1.0, GetParam().t0_ns}, limits), GetParam().plausible);
}

INSTANTIATE_TEST_SUITE_P(Cases, PlausibilityOfT0,
                         ::testing::Values(T0Case{"JustOutsideBelow", 124.99999999999997, false},
                                           T0Case{"OnTheLowerBound", 125.0, false},
                                           T0Case{"JustInsideBelow", 125.00000000000003, true},
                                           T0Case{"JustInsideAbove", 374.99999999999994, true},
                                           T0Case{"OnTheUpperBound", 375.0, false},
                                           T0Case{"JustOutsideAbove", 375.00000000000006, false}),
                         [](const auto& one) { return std::string(one.param.name); });

struct FpsCase {
  const char* name;
  Variant setpoint162;
  const char* suffix;
  std::int32_t error = 0;
};

class FpsMode : public fakes::CalibrationFixture, public ::testing::WithParamInterface<FpsCase> {};

TEST_P(FpsMode, IsOnWhenSetpoint162EqualsTrueAndNotOtherwise) {
  instrument.setpoints[162] = GetParam().setpoint162;
  Instrument parts = Collaborators();
  std::string suffix;
  EXPECT_EQ(ErrorNumberOf([&] { suffix = FpsSuffix(parts); }), GetParam().error);
  EXPECT_EQ(suffix, GetParam().suffix);

  journal.Clear();
  const auto coefficients = instrument.NewCoefficients(instrument.in_force->record[0], 300.0);
  EXPECT_EQ(ErrorNumberOf([&] { Calibration_VerifyCalibCoefficients(parts, coefficients); }),
            GetParam().error);
  if (GetParam().error == 0) {
    EXPECT_EQ(journal.entries().back(),
              std::string("CalibSettings.GetValue(Calibration/TargetAPercentError") +
                  GetParam().suffix + ",0)");
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FpsMode,
    ::testing::Values(FpsCase{"True", true, "_FPS"}, FpsCase{"MinusOne", -1, "_FPS"},
                      FpsCase{"MinusOneDouble", -1.0, "_FPS"},
                      FpsCase{"MinusOne16Bits", std::int16_t{-1}, "_FPS"},
                      FpsCase{"TextTrue", "True", "_FPS"}, FpsCase{"TextMinusOne", "-1", "_FPS"},
                      FpsCase{"False", false, ""}, FpsCase{"Zero", 0, ""}, FpsCase{"One", 1, ""},
                      FpsCase{"Two", 2, ""}, FpsCase{"AlmostMinusOne", -0.9, ""},
                      FpsCase{"TextFalse", "False", ""}, FpsCase{"TextOne", "1", ""},
                      FpsCase{"Empty", Variant(), ""}, FpsCase{"TextYes", "Yes", "", 13}),
    [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace tof
