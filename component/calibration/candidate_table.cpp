#include "component/calibration/candidate_table.h"

#include <cstddef>
#include <limits>
#include <vector>

#include "component/automation/arithmetic.h"
#include "component/automation/error.h"
#include "component/calibration/exchange_order.h"

namespace tof {
namespace {

// Calls move(to, from) for every row, `from` being the row as it was before any was moved.
template <class Move>
void SortBy(CandidateTable& table, double Candidate::*key, Move move) {
  const std::vector<Candidate> before(table.begin(), table.end());
  std::vector<double> keys;
  keys.reserve(before.size());
  for (const Candidate& row : before) keys.push_back(row.*key);
  auto to = table.begin();
  for (const std::size_t from : ExchangeOrder(keys)) move(*to++, before[from]);
}

void MovePairing(Candidate& to, const Candidate& from) {
  to.assumed_mass = from.assumed_mass;
  to.time_ns = from.time_ns;
  to.a = from.a;
}

}  // namespace

CandidateTable DimensionCandidates(std::int32_t mass_count, std::int32_t peak_count) {
  const std::int64_t rows = std::int64_t{mass_count} * peak_count;
  if (rows > std::numeric_limits<std::int32_t>::max()) Raise(RunTimeError::kOverflow);
  if (rows < 1) Raise(RunTimeError::kSubscriptOutOfRange);
  return CandidateTable(0, static_cast<std::int32_t>(rows - 1));
}

void SortByA(CandidateTable& table) {
  SortBy(table, &Candidate::a, MovePairing);
}

void FillGoodness(CandidateTable& table) {
  for (std::int32_t i = table.LBound() + 1; i <= table.UBound(); ++i) {
    table(i).goodness = Subtract(table(i).a, table(i - 1).a);
  }
}

void SortByGoodness(CandidateTable& table) {
  SortBy(table, &Candidate::goodness, [](Candidate& to, const Candidate& from) {
    MovePairing(to, from);
    to.goodness = from.goodness;
  });
}

}  // namespace tof
