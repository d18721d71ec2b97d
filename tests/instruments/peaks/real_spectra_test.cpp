// The peak finder and the fit on published spectra: right isotopes, and the errors they reach.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <iostream>
#include <numeric>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "instruments/masstime/choose_terms.h"
#include "tests/instruments/peaks/shared_spectra.h"

namespace tof::peaks {
namespace {

using masstime::Weighting;

class RealSpectra : public testing::Test {
 protected:
  void SetUp() override {
    if (!HasSharedSpectra()) GTEST_SKIP() << "no shared spectra in " << TOF_SHARED_DATA;
  }
};

void Print(const std::string& what, std::size_t calibrants, double rms_ppm, double loo_ppm) {
  std::cout << what << ": " << calibrants << " calibrants, rms " << rms_ppm
            << " ppm, leave-one-out " << loo_ppm << " ppm\n";
}

// The estimate of A that a calibration starts with: every peak paired with every mass, the pairs in
// the order of A, and the closest neighbours that are near the A in force averaged. 0 when there
// are fewer than three.
double LikelyA(const RealCase& real, const std::vector<Peak>& peaks, double allowed_error) {
  const double a_in_force = real.start.coefficients[masstime::kA];
  std::vector<double> pairs;
  for (const double mass : real.masses) {
    for (const Peak& peak : peaks) {
      pairs.push_back(std::sqrt(mass) / (peak.time_ns - real.start.coefficients[masstime::kT0]));
    }
  }
  std::sort(pairs.begin(), pairs.end());
  std::vector<std::pair<double, double>> by_gap;
  for (std::size_t i = 1; i < pairs.size(); ++i) {
    by_gap.emplace_back(pairs[i] - pairs[i - 1], pairs[i]);
  }
  std::sort(by_gap.begin(), by_gap.end());
  double sum = 0.0;
  int found = 0;
  for (std::size_t i = 0; i + 1 < peaks.size() && i < by_gap.size(); ++i) {
    if (std::abs(by_gap[i].second - a_in_force) >= a_in_force * allowed_error) continue;
    sum += by_gap[i].second;
    ++found;
  }
  return found < 3 ? 0.0 : sum / found;
}

TEST_F(RealSpectra, LadderIsMatchedToItsFirstIsotopesFromACalibrationThatIsOff) {
  const RealCase ladder = LadderCase();
  const FoundCalibrants found = FindIn(ladder, ladder.Options());
  ASSERT_EQ(found.masses.size(), 29U);

  const auto choice =
      masstime::ChooseTerms(found.Get(), ladder.start.window, Weighting::kRelativeMass);
  const masstime::Fit& fit = choice.candidates[choice.chosen].fit;
  for (const auto& candidate : choice.candidates) {
    Print("ladder, " + std::to_string(std::popcount(candidate.fit.terms)) + " terms, " +
              candidate.reason,
          29, candidate.fit.rms_ppm, candidate.fit.loo_rms_ppm);
  }
  // A neighbouring isotope would be 240 to 1900 ppm away.
  EXPECT_LT(fit.max_ppm, 10.0);
  EXPECT_LE(fit.rms_ppm, 1.5);
  EXPECT_LE(fit.loo_rms_ppm, 2.2);
  for (std::size_t k = masstime::kFirstTerm; k < fit.coefficients.size(); ++k) {
    EXPECT_LT(std::abs(fit.coefficients[k]), 1.0);
  }

  const auto nested =
      masstime::LeaveOneOutWithChoice(found.Get(), ladder.start.window, Weighting::kRelativeMass);
  const double without_ends =
      masstime::RootMeanSquare(std::span(nested).subspan(1, nested.size() - 2));
  Print("ladder, terms chosen anew in each round, without the end points", 27, fit.rms_ppm,
        without_ends);
  EXPECT_LE(without_ends, 3.0);
}

TEST_F(RealSpectra, LadderLeadsToTheRightAFromItsStrongestClusters) {
  const auto spectrum = ReadSpectrum(LadderCase().file, LadderCase().bin_width_ns);
  for (const double a_factor : {0.99, 1.0, 1.01}) {
    for (const double t0_shift_ns : {-50.0, 50.0}) {
      for (const double allowed_error : {0.011, 0.02}) {
        SCOPED_TRACE(testing::Message() << "A x " << a_factor << ", t0 + " << t0_shift_ns
                                        << " ns, allowed " << allowed_error);
        RealCase ladder = LadderCase();
        ladder.start.coefficients[masstime::kA] *= a_factor / 1.01;
        ladder.start.coefficients[masstime::kT0] += t0_shift_ns - 50.0;
        const auto peaks =
            FindPeaks(spectrum, 30'371.0, 99'314.0, 31, ladder.start, ladder.Options());
        const double likely_a = LikelyA(ladder, peaks, allowed_error);
        EXPECT_NEAR(likely_a / 6.4813e-4, 1.0, 1.5e-3);
        ladder.start.coefficients[masstime::kA] = likely_a;
        const auto found = FindIn(spectrum, ladder, ladder.Options());
        ASSERT_EQ(found.masses.size(), 29U);
        EXPECT_LT(
            masstime::FitTerms(found.Get(), ladder.start.window, 0b111, Weighting::kRelativeMass)
                .max_ppm,
            10.0);
      }
    }
  }
}

TEST_F(RealSpectra, StrongestClustersOfTheLadderHoldNearlyAllCalibrants) {
  const RealCase ladder = LadderCase();
  const auto spectrum = ReadSpectrum(ladder.file, ladder.bin_width_ns);
  const auto peaks = FindPeaks(spectrum, 30'371.0, 99'314.0, 31, ladder.start, ladder.Options());
  std::size_t calibrants = 0;
  for (const double time_ns : FindIn(spectrum, ladder, ladder.Options()).times_ns) {
    calibrants +=
        static_cast<std::size_t>(std::count_if(peaks.begin(), peaks.end(), [&](const Peak& peak) {
          return std::abs(peak.time_ns - time_ns) < 0.01;
        }));
  }
  std::cout << calibrants << " of 29 calibrants among the 31 most abundant clusters\n";
  EXPECT_GE(calibrants, 28U);
}

TEST_F(RealSpectra, BreathReachesItsLimitsWithAAndT0Alone) {
  const double rms_limits_ppm[] = {3.15, 2.7, 2.79};
  const double loo_limits_ppm[] = {4.86, 4.05, 3.96};
  for (std::size_t day = 1; day <= 3; ++day) {
    const RealCase breath = BreathCase(day);
    const FoundCalibrants found = FindIn(breath, breath.Options());
    EXPECT_EQ(found.masses.size(), 16U);
    const auto fit =
        masstime::FitTerms(found.Get(), breath.start.window, 0, Weighting::kRelativeMass);
    Print(breath.file, found.masses.size(), fit.rms_ppm, fit.loo_rms_ppm);
    EXPECT_LE(fit.rms_ppm, rms_limits_ppm[day - 1]);
    EXPECT_LE(fit.loo_rms_ppm, loo_limits_ppm[day - 1]);
    const auto choice =
        masstime::ChooseTerms(found.Get(), breath.start.window, Weighting::kRelativeMass);
    EXPECT_EQ(choice.chosen, 0U) << "more terms over-fit these";
  }
}

TEST_F(RealSpectra, SingleBreathSpectraShowTheirClearIonsAndReportTheOthers) {
  RealCase breath = BreathCase(1);
  FinderOptions options;
  options.pick.centroid.method = CentroidMethod::kMatchedFilter;
  std::vector<std::vector<double>> times_ns(breath.masses.size());
  for (int number = 0; number < 10; ++number) {
    const auto spectrum = ReadSpectrum("breath/ind1-1_00" + std::to_string(number) + ".txt", 0.2);
    const auto peaks = FindCalibrants(spectrum, breath.masses, breath.start, kOwnWindow, options);
    for (std::size_t i = 0; i < peaks.size(); ++i) {
      if (peaks[i]) times_ns[i].push_back(peaks[i]->time_ns);
    }
  }
  const std::vector<double> clear{21.022086, 57.069877, 61.028406, 65.059706, 69.069877,
                                  73.064791, 75.044056, 81.069877, 83.085527, 137.132477};
  FoundCalibrants averages;
  for (std::size_t i = 0; i < breath.masses.size(); ++i) {
    const double count = static_cast<double>(times_ns[i].size());
    std::cout << breath.masses[i] << " in " << times_ns[i].size() << " of 10 spectra\n";
    if (std::find(clear.begin(), clear.end(), breath.masses[i]) == clear.end()) continue;
    EXPECT_EQ(times_ns[i].size(), 10U) << breath.masses[i];
    averages.masses.push_back(breath.masses[i]);
    averages.times_ns.push_back(std::accumulate(times_ns[i].begin(), times_ns[i].end(), 0.0) /
                                count);
  }
  // Nearly absent in these seconds, though strong in the sum of all.
  EXPECT_LT(times_ns[2].size(), 5U);
  const auto fit =
      masstime::FitTerms(averages.Get(), breath.start.window, 0, Weighting::kRelativeMass);
  Print("ten single breath spectra averaged", averages.masses.size(), fit.rms_ppm, fit.loo_rms_ppm);
  EXPECT_LT(fit.rms_ppm, 6.0);
}

TEST_F(RealSpectra, LinearTraceShowsAllItsIons) {
  const RealCase linear = LinearCase();
  const FoundCalibrants found = FindIn(linear, linear.Options());
  ASSERT_EQ(found.masses.size(), 7U);
  const auto fit =
      masstime::FitTerms(found.Get(), linear.start.window, 0, Weighting::kRelativeMass);
  Print("linear trace", 7, fit.rms_ppm, fit.loo_rms_ppm);
  // A resolving power of 150 is a peak width of 6700 ppm.
  EXPECT_LT(fit.max_ppm, 200.0);
  for (const double allowed_error : {0.01, 0.02}) {
    const auto spectrum = ReadSpectrum(linear.file, linear.bin_width_ns);
    const auto peaks = FindPeaks(spectrum, 1'519.0, 21'521.0, 9, linear.start, linear.Options());
    EXPECT_NEAR(LikelyA(linear, peaks, allowed_error) / 1.3635e-3, 1.0, 0.01);
  }
}

}  // namespace
}  // namespace tof::peaks
