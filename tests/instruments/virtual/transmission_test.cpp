#include "instruments/virtual/transmission.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tof::virtual_instrument {
namespace {

struct AtSeventyFiveVolts {
  double mass_u;
  double ions_before_guide;
  double ions_after_guide;
};

void PrintTo(const AtSeventyFiveVolts& row, std::ostream* out) {
  *out << row.mass_u << " u";
}

class BuiltInGuide : public testing::TestWithParam<AtSeventyFiveVolts> {};

TEST_P(BuiltInGuide, SpreadsTheCalibrantsOverTwoDecades) {
  const auto& row = GetParam();
  const double passed = Transmission(RfGuideParameters(), row.mass_u, 75.0);
  EXPECT_NEAR(row.ions_before_guide * passed / row.ions_after_guide, 1.0, 0.02);
}

INSTANTIATE_TEST_SUITE_P(All, BuiltInGuide,
                         testing::Values(AtSeventyFiveVolts{90.97664, 3.277, 2.0},
                                         AtSeventyFiveVolts{158.96407, 1.517, 1.5},
                                         AtSeventyFiveVolts{226.95149, 3.239, 3.2},
                                         AtSeventyFiveVolts{362.92634, 9.003, 8.0},
                                         AtSeventyFiveVolts{498.90119, 5.724, 4.0},
                                         AtSeventyFiveVolts{702.86346, 2.337, 1.0},
                                         AtSeventyFiveVolts{906.82573, 1.956, 0.5},
                                         AtSeventyFiveVolts{1178.77542, 1.828, 0.25},
                                         AtSeventyFiveVolts{1450.72512, 1.489, 0.12},
                                         AtSeventyFiveVolts{1790.66223, 1.703, 0.08}));

TEST(Transmission, RisesWithTheWellAndFallsAtTheCutoff) {
  const RfGuideParameters guide;
  EXPECT_LT(Transmission(guide, 159.0, 20.0), 0.1 * Transmission(guide, 159.0, 60.0));
  EXPECT_LT(Transmission(guide, 91.0, 150.0), 0.01 * Transmission(guide, 91.0, 50.0));
}

TEST(Transmission, OfAHeavierIonIsBestAtAHigherVoltage) {
  const RfGuideParameters guide;
  const auto best_volts = [&](double mass_u) {
    double best = 0.0;
    for (double volts = 1.0; volts <= 400.0; volts += 1.0) {
      if (Transmission(guide, mass_u, volts) > Transmission(guide, mass_u, best)) best = volts;
    }
    return best;
  };
  EXPECT_LT(best_volts(91.0), best_volts(159.0));
  EXPECT_LT(best_volts(159.0), best_volts(500.0));
}

TEST(Transmission, HalvesWhereTheAdiabaticityReachesItsCutoff) {
  const RfGuideParameters guide;
  const double volts = 75.0 * guide.adiabaticity_cutoff / Adiabaticity(guide, 91.0, 75.0);
  EXPECT_NEAR(Transmission(guide, 91.0, volts), 0.5, 1e-4);
}

TEST(WellDepth, GoesWithTheSquareOfTheVoltageOverTheMass) {
  const RfGuideParameters guide;
  // 16 x 75^2 x 0.8^6 / (4 x 91 x 33.142)
  EXPECT_NEAR(WellDepthEv(guide, 91.0, 75.0), 1.9557, 1e-3);
  EXPECT_DOUBLE_EQ(WellDepthEv(guide, 91.0, 150.0), 4.0 * WellDepthEv(guide, 91.0, 75.0));
  EXPECT_DOUBLE_EQ(WellDepthEv(guide, 182.0, 75.0), 0.5 * WellDepthEv(guide, 91.0, 75.0));
}

}  // namespace
}  // namespace tof::virtual_instrument
