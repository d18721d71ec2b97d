#include "instruments/masstime/choose_terms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/instruments/masstime/simulated_calibrants.h"

namespace tof::masstime {
namespace {

constexpr AcquisitionWindow kWindow{12'000.0, 72'000.0};

TermSet ChosenTerms(const TermChoice& choice) {
  return choice.candidates[choice.chosen].fit.terms;
}

TEST(ChooseTerms, TakesNoTermsForAStraightLine) {
  const MassTimeModel line{{6.5e-4, 300.0}, kWindow};
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const TermChoice choice =
        ChooseTerms(Simulate(line, 25, 1.0, seed).Get(), kWindow, Weighting::kRelativeMass);
    EXPECT_EQ(ChosenTerms(choice), 0U) << "seed " << seed;
  }
}

TEST(ChooseTerms, TakesTheTermsThatTheCurveHas) {
  const MassTimeModel curve{{6.5e-4, 300.0, 0.0, 4e-3}, kWindow};
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const TermChoice choice =
        ChooseTerms(Simulate(curve, 25, 1.0, seed).Get(), kWindow, Weighting::kRelativeMass);
    EXPECT_EQ(ChosenTerms(choice), 0b11U) << "seed " << seed;
  }
}

TEST(ChooseTerms, RefusesAModelThatHangsOnOneCalibrant) {
  const MassTimeModel curve{{6.5e-4, 300.0, 4e-3}, kWindow};
  auto calibrants = Simulate(curve, 8);
  // One far away from all others.
  for (std::size_t i = 0; i + 1 < calibrants.masses.size(); ++i) {
    calibrants.times_ns[i] = 60'000.0 + 100.0 * static_cast<double>(i);
    calibrants.masses[i] = TimeToMass(curve, calibrants.times_ns[i]);
  }
  calibrants.times_ns.back() = 15'000.0;
  calibrants.masses.back() = TimeToMass(curve, 15'000.0);
  const TermChoice choice = ChooseTerms(calibrants.Get(), kWindow, Weighting::kRelativeMass);
  EXPECT_EQ(ChosenTerms(choice), 0U);
  EXPECT_EQ(choice.candidates[1].reason,
            "leverage 1.00 above 0.90: it hangs on a single calibrant");
}

TEST(ChooseTerms, EveryCandidateHasAReason) {
  const MassTimeModel curve{{6.5e-4, 300.0, 4e-3}, kWindow};
  const TermChoice choice =
      ChooseTerms(Simulate(curve, 25, 1.0).Get(), kWindow, Weighting::kRelativeMass);
  ASSERT_EQ(choice.candidates.size(), 1 + kTermCount);
  for (const Candidate& candidate : choice.candidates) EXPECT_FALSE(candidate.reason.empty());
  EXPECT_EQ(choice.candidates[0].reason, "A and t0 alone: the start");
  EXPECT_TRUE(choice.candidates[choice.chosen].accepted);
}

TEST(ChooseTerms, OffersOnlyWhatTheCalibrantsDetermine) {
  const MassTimeModel line{{6.5e-4, 300.0}, kWindow};
  EXPECT_EQ(
      ChooseTerms(Simulate(line, 4).Get(), kWindow, Weighting::kRelativeMass).candidates.size(),
      3U);
  EXPECT_THROW(ChooseTerms({}, kWindow, Weighting::kRelativeMass), FitError);
}

TEST(LeaveOneOutWithChoice, EqualsTheFitsOwnWhenEveryRoundChoosesTheSame) {
  const MassTimeModel curve{{6.5e-4, 300.0, 0.0, 4e-3}, kWindow};
  const auto calibrants = Simulate(curve, 25, 1.0);
  const auto errors_ppm =
      LeaveOneOutWithChoice(calibrants.Get(), kWindow, Weighting::kRelativeMass);
  const Fit fit = FitTerms(calibrants.Get(), kWindow, 0b11, Weighting::kRelativeMass);
  ASSERT_EQ(errors_ppm.size(), 25U);
  for (std::size_t i = 0; i < errors_ppm.size(); ++i) {
    EXPECT_NEAR(errors_ppm[i], fit.loo_error_ppm[i], 1e-3);
  }
}

}  // namespace
}  // namespace tof::masstime
