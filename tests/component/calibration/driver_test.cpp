#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

class Driver : public fakes::CalibrationFixture {};

TEST_F(Driver, CalibratesAndPutsTheFittedCoefficientsInForce) {
  const auto coefficients = Calibrate();
  ASSERT_NE(coefficients, nullptr);
  EXPECT_TRUE(events.events.empty());
  EXPECT_EQ(coefficients, instrument.in_force);
  EXPECT_NEAR(coefficients->GetCoefficientRecord()[0], instrument.true_a_per_ns, 1e-12);
  EXPECT_NEAR(coefficients->GetCoefficientRecord()[1], instrument.true_t0_ns, 1e-6);
}

TEST_F(Driver, TwoBadFitsLoadTheDefaultsAndRaiseTheEvent) {
  instrument.bad_fits = {0.5, 0.5};
  EXPECT_EQ(Calibrate(), nullptr);
  EXPECT_THAT(events.events,
              ElementsAre(Pair(-1, "Calibration failed: bad coefficients returned.")));
  EXPECT_EQ(instrument.in_force, instrument.defaults);
}

}  // namespace
}  // namespace tof
