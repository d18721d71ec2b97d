#include "instruments/peaks/centroid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/instruments/peaks/simulated_spectrum.h"

namespace tof::peaks {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr CentroidMethod kMethods[] = {CentroidMethod::kCentreOfGravity, CentroidMethod::kEdges,
                                       CentroidMethod::kLogParabola, CentroidMethod::kGaussianFit,
                                       CentroidMethod::kMatchedFilter};

Trace TraceOf(const SimulatedSpectrum& spectrum) {
  return ExtractTrace(spectrum.Get(), -kInfinity, kInfinity);
}

CentroidOptions By(CentroidMethod method) {
  return {method, {}};
}

TEST(Centroid, LiesBetweenTheBinsOfASmoothPeak) {
  for (const CentroidMethod method : kMethods) {
    for (const double fwhm_bins : {3.0, 5.0, 12.0}) {
      for (const double offset : {-0.45, -0.2, 0.0, 0.1, 0.35, 0.5}) {
        SimulatedSpectrum spectrum(0.0, 200.0, 1.0);
        spectrum.AddSmoothPeak(100.0 + offset, fwhm_bins, 1e6);
        const double centre = Centroid(TraceOf(spectrum), 100, fwhm_bins, 0.0, By(method));
        EXPECT_NEAR(centre, 100.0 + offset, 0.04)
            << "method " << static_cast<int>(method) << ", " << fwhm_bins << " bins wide";
      }
    }
  }
}

TEST(Centroid, CentreOfGravityBearsPeaksOfABinAndAHalf) {
  for (const double offset : {-0.5, -0.3, 0.0, 0.2, 0.4}) {
    SimulatedSpectrum spectrum(0.0, 200.0, 1.0);
    spectrum.AddSmoothPeak(100.0 + offset, 1.5, 1e6);
    EXPECT_NEAR(Centroid(TraceOf(spectrum), 100, 1.5, 0.0, {}), 100.0 + offset, 5e-3);
  }
}

// Three bins determine a parabola, however narrow the peak is.
TEST(Centroid, LogParabolaBearsPeaksOfABinAndAQuarter) {
  for (const double offset : {-0.3, 0.0, 0.2}) {
    SimulatedSpectrum spectrum(0.0, 200.0, 1.0);
    spectrum.AddSmoothPeak(100.0 + offset, 1.25, 1e6);
    EXPECT_NEAR(Centroid(TraceOf(spectrum), 100, 1.25, 0.0, By(CentroidMethod::kLogParabola)),
                100.0 + offset, 0.1);
  }
}

// Bins further off than 0.6 of the width do not count.
TEST(Centroid, LogParabolaLooksAtTheTopOfThePeakAlone) {
  SimulatedSpectrum spectrum(0.0, 200.0, 1.0);
  spectrum.AddSmoothPeak(100.2, 10.0, 1e6);
  Trace trace = TraceOf(spectrum);
  const auto centre = [&trace] {
    return Centroid(trace, 100, 10.0, 0.0, By(CentroidMethod::kLogParabola));
  };
  const double before = centre();
  trace.intensity[107] *= 1.5;
  EXPECT_EQ(centre(), before);
  trace.intensity[106] *= 1.5;
  EXPECT_GT(centre(), before + 0.05);
}

TEST(Centroid, CentreOfGravityOfCountedIonsIsNearTheStatisticalLimit) {
  constexpr double kIons = 400.0, kFwhmBins = 6.0;
  constexpr int kSpectra = 2'000;
  double sum = 0.0, sum_of_squares = 0.0;
  for (int seed = 1; seed <= kSpectra; ++seed) {
    SimulatedSpectrum spectrum(0.0, 100.0, 1.0, static_cast<std::uint64_t>(seed));
    spectrum.AddCountedPeak(50.3, kFwhmBins, kIons, 250.0);
    const double error = Centroid(TraceOf(spectrum), 50, kFwhmBins, 0.0, {}) - 50.3;
    sum += error;
    sum_of_squares += error * error;
  }
  const double limit = kFwhmBins / (kFwhmPerSigmaOfGaussian * std::sqrt(kIons));
  EXPECT_LT(std::sqrt(sum_of_squares / kSpectra), 1.1 * limit);
  EXPECT_LT(std::abs(sum / kSpectra), 4.0 * limit / std::sqrt(kSpectra));
}

// A detector that counts the first ion of a pulse only sees the density f exp(-lambda F); to first
// order its mean lies sigma lambda / (2 sqrt(pi)) early.
TEST(Centroid, CentreOfGravityFollowsTheDeadTimeShift) {
  constexpr double kFwhmBins = 8.0, kLambda = 0.1;
  const double sigma = kFwhmBins / kFwhmPerSigmaOfGaussian;
  Trace trace{0.0, 1.0, std::vector<double>(200)};
  const auto arrived = [&](double bin) {
    return 0.5 * std::erfc(-(bin - 100.0) / (sigma * std::sqrt(2.0)));
  };
  for (std::size_t i = 0; i < trace.intensity.size(); ++i) {
    const double bin = static_cast<double>(i);
    trace.intensity[i] =
        1e6 * (std::exp(-kLambda * arrived(bin - 0.5)) - std::exp(-kLambda * arrived(bin + 0.5)));
  }
  const double expected = -sigma * kLambda / (2.0 * std::sqrt(std::acos(-1.0)));
  EXPECT_NEAR(Centroid(trace, 100, kFwhmBins, 0.0, {}) - 100.0, expected, 0.1 * std::abs(expected));
}

TEST(Centroid, EdgesTakeTheTimeBetweenLeadingAndTrailingEdge) {
  // A triangle that rises over 10 bins and falls over 30.
  Trace trace{0.0, 1.0, std::vector<double>(100)};
  for (std::size_t i = 0; i <= 10; ++i) trace.intensity[30 + i] = static_cast<double>(i) * 30.0;
  for (std::size_t i = 0; i <= 30; ++i)
    trace.intensity[40 + i] = 300.0 - static_cast<double>(i) * 10.0;
  const auto at = [&](double position) {
    return Centroid(trace, 40, 20.0, 0.0, {CentroidMethod::kEdges, {0.5, 0.5, position}});
  };
  EXPECT_NEAR(at(0.0), 35.0, 1e-9);
  EXPECT_NEAR(at(1.0), 55.0, 1e-9);
  EXPECT_NEAR(at(0.25), 40.0, 1e-9);
}

TEST(Centroid, LeadingEdgeNeedsNoTrailingOne) {
  SimulatedSpectrum spectrum(0.0, 101.0, 1.0);
  spectrum.AddSmoothPeak(100.0, 8.0, 1e6);  // cut off at its top
  const Trace trace = TraceOf(spectrum);
  EXPECT_TRUE(
      std::isfinite(Centroid(trace, 100, 8.0, 0.0, {CentroidMethod::kEdges, {0.3, 0.9, 0.0}})));
  EXPECT_TRUE(
      std::isnan(Centroid(trace, 100, 8.0, 0.0, {CentroidMethod::kEdges, {0.3, 0.9, 0.5}})));
}

// A steep rise and a long tail: one step of a method that repeats itself is not enough.
Trace Tailing() {
  Trace trace{0.0, 1.0, std::vector<double>(100)};
  for (std::size_t i = 0; i < trace.intensity.size(); ++i) {
    const double bin = static_cast<double>(i) - 50.0;
    trace.intensity[i] = 1e4 * std::exp(bin < 0.0 ? -0.2 * bin * bin : -0.04 * bin * bin);
  }
  return trace;
}

TEST(Centroid, OfAMethodThatRepeatsItselfIsTheSameFromEveryStart) {
  const Trace trace = Tailing();
  for (const CentroidMethod method :
       {CentroidMethod::kCentreOfGravity, CentroidMethod::kGaussianFit,
        CentroidMethod::kMatchedFilter}) {
    const double centre = Centroid(trace, 50, 6.0, 0.0, By(method));
    for (const std::size_t apex : {48U, 51U, 53U}) {
      EXPECT_NEAR(Centroid(trace, apex, 6.0, 0.0, By(method)), centre, 1e-5)
          << "method " << static_cast<int>(method) << " from " << apex;
    }
  }
}

// The signal under the window has no moment about the place that is found.
TEST(Centroid, OfTheMatchedFilterIsWhereItsWindowRests) {
  const Trace trace = Tailing();
  const double sigma = 6.0 / kFwhmPerSigmaOfGaussian;
  const double centre = Centroid(trace, 50, 6.0, 0.0, By(CentroidMethod::kMatchedFilter));
  double sum = 0.0, moment = 0.0;
  for (std::size_t i = 0; i < trace.intensity.size(); ++i) {
    const double distance = static_cast<double>(i) - centre;
    const double weighted =
        std::exp(-0.5 * distance * distance / (sigma * sigma)) * trace.intensity[i];
    sum += weighted;
    moment += weighted * distance;
  }
  EXPECT_NEAR(moment / sum, 0.0, 1e-3);
}

TEST(Centroid, IsNoneWithoutASignal) {
  const Trace flat{0.0, 1.0, std::vector<double>(50, 10.0)};
  for (const CentroidMethod method : kMethods) {
    EXPECT_TRUE(std::isnan(Centroid(flat, 25, 4.0, 10.0, By(method))))
        << "method " << static_cast<int>(method);
  }
}

}  // namespace
}  // namespace tof::peaks
