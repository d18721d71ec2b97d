// The candidate table's sort against the plain exchange sort whose order it reproduces.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "component/calibration/candidate_table.h"
#include "tests/component/calibration/plain_exchange_sort.h"

namespace tof {
namespace {

// Pairings of masses with peaks as a spectrum gives them: every key distinct, for practical
// purposes.
std::vector<Candidate> DistinctRows(std::int64_t count) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> mass(100.0, 2000.0);
  std::uniform_real_distribution<double> time_ns(10000.0, 100000.0);
  std::vector<Candidate> rows(static_cast<std::size_t>(count));
  for (Candidate& row : rows) {
    row.assumed_mass = mass(random);
    row.time_ns = time_ns(random);
    row.a = std::sqrt(row.assumed_mass) / (row.time_ns / 1000.0);
  }
  return rows;
}

// As many values of A as a thousandth of the rows (at least three): every row has equals.
std::vector<Candidate> TiedRows(std::int64_t count) {
  std::vector<Candidate> rows = DistinctRows(count);
  std::mt19937_64 random(2);
  const auto values = static_cast<std::uint64_t>(count / 1000 + 3);
  for (Candidate& row : rows) row.a = static_cast<double>(random() % values);
  return rows;
}

using MakeRows = std::vector<Candidate> (*)(std::int64_t count);

void QuickSort(benchmark::State& state, MakeRows make_rows) {
  const CandidateTable unsorted(make_rows(state.range(0)));
  for (auto _ : state) {
    CandidateTable table = unsorted;
    SortByA(table);
    benchmark::DoNotOptimize(table.begin());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void PlainSort(benchmark::State& state, MakeRows make_rows) {
  const std::vector<Candidate> unsorted = make_rows(state.range(0));
  for (auto _ : state) {
    std::vector<Candidate> rows = unsorted;
    PlainExchangeSort(
        rows, [](const Candidate& row) { return row.a; },
        [](Candidate& a, Candidate& b) {
          std::swap(a.assumed_mass, b.assumed_mass);
          std::swap(a.time_ns, b.time_ns);
          std::swap(a.a, b.a);
        });
    benchmark::DoNotOptimize(rows.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// 130 rows: ten masses and thirteen peaks, a usual calibration.
BENCHMARK_CAPTURE(QuickSort, distinct, DistinctRows)
    ->Arg(130)
    ->Arg(10000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(QuickSort, tied, TiedRows)
    ->Arg(130)
    ->Arg(10000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(PlainSort, distinct, DistinctRows)
    ->Arg(130)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(PlainSort, tied, TiedRows)->Arg(130)->Arg(10000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tof
