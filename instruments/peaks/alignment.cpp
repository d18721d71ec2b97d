#include "instruments/peaks/alignment.h"

#include <Eigen/QR>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

namespace tof::peaks {
namespace {

// How far from where an alignment says a first isotope may lie to count as matched, as a part of
// the flight time. Real analysers are up to 0.05 % from any straight line at the ends of their
// range.
constexpr double kProposalTolerance = 6e-4;
// The refinement starts from the least of these that matches most of the calibrants, because every
// tolerance more admits chance neighbours; then it looks once around itself with twice as much, for
// those that only the curvature brings near, and ends with the least.
constexpr std::array<double, 4> kRefinementTolerances{1e-4, 2e-4, 4e-4, 8e-4};
// How many calibrants of each half of the range make proposals, and each with how many clusters.
constexpr std::size_t kProposersPerHalf = 6;
constexpr std::size_t kClustersPerProposer = 8;
// What a proposal must match to displace the calibration in force.
constexpr std::size_t kLeastMatched = 3;
constexpr double kLeastMatchedShare = 0.6;  // of the calibrants
constexpr double kLeastGain = 1.2;
constexpr std::size_t kLargestCorrectionDegree = 2;
constexpr std::size_t kMatchedPerDegree = 3;

struct Match {
  std::size_t expected;
  const Cluster* cluster;
  double weight;  // what it says for the alignment that it was made under
};

// What a cluster says for an alignment: a strong one and a near one more, because nearly any time
// has some weak peak around. `miss` is its distance in tolerances.
double Weight(const Cluster& cluster, double miss) {
  return (1.0 - 0.5 * miss * miss) * std::log10(1.0 + cluster.first.snr);
}

class Aligner {
 public:
  Aligner(std::span<const Expected> expected, std::span<const Cluster> clusters,
          const PeakWidthModel& width)
      : expected_(expected), clusters_(clusters), width_(width) {
    double first_ns = expected.front().time_ns;
    double last_ns = first_ns;
    for (const Expected& e : expected) {
      first_ns = std::min(first_ns, e.time_ns);
      last_ns = std::max(last_ns, e.time_ns);
    }
    in_force_.middle_ns = 0.5 * (first_ns + last_ns);
    in_force_.half_width_ns = std::max(0.5 * (last_ns - first_ns), 1.0);
  }

  Alignment Align() {
    Alignment best = in_force_;
    double best_score = Score(best);
    if (best.matched < expected_.size()) {
      const double required = kLeastGain * best_score;
      for (Alignment& proposal : Proposals()) {
        const double score = Score(proposal);
        if (score > required && score > best_score && IsWellMatched(proposal)) {
          best = proposal;
          best_score = score;
        }
      }
    }
    const double start = StartTolerance(best);
    for (const double tolerance : {start, 2.0 * start, start, kRefinementTolerances.front()}) {
      Refine(best, tolerance);
    }
    best.spread = Spread(best);
    return best;
  }

 private:
  double ToleranceAt(double time_ns, double of_time) const {
    return std::max(2.0 * width_.FwhmAt(time_ns), of_time * time_ns);
  }

  // The cluster that speaks most for `time_ns`; its weight is 0 when there is none.
  Match BestMatch(std::size_t index, double time_ns, double of_time) const {
    const double tolerance_ns = ToleranceAt(time_ns, of_time);
    auto cluster = std::lower_bound(
        clusters_.begin(), clusters_.end(), time_ns - tolerance_ns,
        [](const Cluster& c, double limit_ns) { return c.first.time_ns < limit_ns; });
    Match best{index, nullptr, 0.0};
    for (; cluster != clusters_.end() && cluster->first.time_ns <= time_ns + tolerance_ns;
         ++cluster) {
      const double weight = Weight(*cluster, (cluster->first.time_ns - time_ns) / tolerance_ns);
      if (weight > best.weight) best = {index, &*cluster, weight};
    }
    return best;
  }

  std::vector<Match> Matches(const Alignment& alignment, double of_time) const {
    std::vector<Match> matches;
    for (std::size_t i = 0; i < expected_.size(); ++i) {
      const double time_ns = alignment.Correct(expected_[i].time_ns);
      if (!(std::abs(time_ns - expected_[i].time_ns) <= expected_[i].window_ns)) continue;
      const Match match = BestMatch(i, time_ns, of_time);
      if (match.cluster != nullptr) matches.push_back(match);
    }
    return matches;
  }

  double Score(Alignment& alignment) const {
    const std::vector<Match> matches = Matches(alignment, kProposalTolerance);
    alignment.matched = matches.size();
    double score = 0.0;
    for (const Match& match : matches) score += match.weight;
    return score;
  }

  bool IsWellMatched(const Alignment& alignment) const {
    const double share = kLeastMatchedShare * static_cast<double>(expected_.size());
    return alignment.matched >= kLeastMatched && static_cast<double>(alignment.matched) >= share;
  }

  double StartTolerance(const Alignment& alignment) const {
    const double most = kLeastMatchedShare * static_cast<double>(alignment.matched);
    for (const double tolerance : kRefinementTolerances) {
      if (static_cast<double>(Matches(alignment, tolerance).size()) >= most) return tolerance;
    }
    return kRefinementTolerances.back();
  }

  // The most abundant clusters in the window of a calibrant.
  std::vector<Match> Candidates(std::size_t index) const {
    const auto [time_ns, window_ns] = expected_[index];
    std::vector<Match> candidates;
    for (const Cluster& cluster : clusters_) {
      if (std::abs(cluster.first.time_ns - time_ns) <= window_ns) {
        candidates.push_back({index, &cluster, 0.0});
      }
    }
    std::sort(candidates.begin(), candidates.end(), [](const Match& a, const Match& b) {
      return a.cluster->abundance > b.cluster->abundance;
    });
    candidates.resize(std::min(candidates.size(), kClustersPerProposer));
    return candidates;
  }

  // Pairings of the calibrants of one half of the range that have the most abundant clusters.
  std::vector<Match> Proposers(bool upper_half) const {
    std::vector<std::vector<Match>> by_calibrant;
    for (std::size_t i = 0; i < expected_.size(); ++i) {
      if ((expected_[i].time_ns > in_force_.middle_ns) != upper_half) continue;
      std::vector<Match> candidates = Candidates(i);
      if (!candidates.empty()) by_calibrant.push_back(std::move(candidates));
    }
    std::sort(by_calibrant.begin(), by_calibrant.end(), [](const auto& a, const auto& b) {
      return a.front().cluster->abundance > b.front().cluster->abundance;
    });
    by_calibrant.resize(std::min(by_calibrant.size(), kProposersPerHalf));
    std::vector<Match> proposers;
    for (const auto& candidates : by_calibrant) {
      proposers.insert(proposers.end(), candidates.begin(), candidates.end());
    }
    return proposers;
  }

  std::vector<Alignment> Proposals() const {
    std::vector<Alignment> proposals;
    const std::vector<Match> early = Proposers(false);
    const std::vector<Match> late = Proposers(true);
    for (const Match& a : early) {
      for (const Match& b : late) {
        const double time_a = expected_[a.expected].time_ns;
        const double time_b = expected_[b.expected].time_ns;
        const double shift_a = a.cluster->first.time_ns - time_a;
        const double shift_b = b.cluster->first.time_ns - time_b;
        const double slope = (shift_b - shift_a) / (time_b - time_a);
        Alignment proposal = in_force_;
        proposal.correction_ns = {shift_a + slope * (in_force_.middle_ns - time_a),
                                  slope * in_force_.half_width_ns};
        proposals.push_back(std::move(proposal));
      }
    }
    return proposals;
  }

  // Least squares over what is matched now, in parts of the flight time; clear matches count more.
  void Refine(Alignment& alignment, double of_time) const {
    const std::vector<Match> matches = Matches(alignment, of_time);
    alignment.matched = matches.size();
    if (matches.size() < kLeastMatched) return;
    const std::size_t degree = std::min(
        kLargestCorrectionDegree, std::max<std::size_t>(1, matches.size() / kMatchedPerDegree));
    const auto rows = static_cast<Eigen::Index>(matches.size());
    Eigen::MatrixXd design(rows, static_cast<Eigen::Index>(degree) + 1);
    Eigen::VectorXd shift(rows);
    for (Eigen::Index row = 0; row < rows; ++row) {
      const auto& [index, cluster, weight] = matches[static_cast<std::size_t>(row)];
      const double time_ns = expected_[index].time_ns;
      const double x = (time_ns - alignment.middle_ns) / alignment.half_width_ns;
      double power = weight / time_ns;
      for (Eigen::Index column = 0; column < design.cols(); ++column, power *= x) {
        design(row, column) = power;
      }
      shift(row) = weight * (cluster->first.time_ns - time_ns) / time_ns;
    }
    const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(design);
    if (qr.rank() < design.cols()) return;
    const Eigen::VectorXd solution = qr.solve(shift);
    alignment.correction_ns.assign(solution.begin(), solution.end());
  }

  double Spread(const Alignment& alignment) const {
    std::vector<double> distances;
    for (const Match& match : Matches(alignment, kRefinementTolerances.front())) {
      const double time_ns = alignment.Correct(expected_[match.expected].time_ns);
      distances.push_back(std::abs(match.cluster->first.time_ns / time_ns - 1.0));
    }
    if (distances.empty()) return 0.0;
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    return *middle;
  }

  std::span<const Expected> expected_;
  std::span<const Cluster> clusters_;
  const PeakWidthModel& width_;
  Alignment in_force_;
};

}  // namespace

double Alignment::Correct(double expected_ns) const {
  const double x = (expected_ns - middle_ns) / half_width_ns;
  double correction = 0.0;
  for (std::size_t power = correction_ns.size(); power-- > 0;) {
    correction = correction * x + correction_ns[power];
  }
  return expected_ns + correction;
}

Alignment AlignTimes(std::span<const Expected> expected, std::span<const Cluster> clusters,
                     const PeakWidthModel& width) {
  if (expected.empty()) return {};
  return Aligner(expected, clusters, width).Align();
}

}  // namespace tof::peaks
