#include "component/calibration/candidate_table.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/component/calibration/plain_exchange_sort.h"
#include "tests/component/error_number_of.h"

namespace tof {
namespace {

CandidateTable TableOf(std::vector<Candidate> rows) {
  return CandidateTable(std::move(rows));
}

TEST(CandidateTable, HasARowOfZerosForEveryPairing) {
  const CandidateTable table = DimensionCandidates(10, 13);
  EXPECT_EQ(table.LBound(), 0);
  EXPECT_EQ(table.UBound(), 129);
  EXPECT_EQ(table(129), Candidate{});
  EXPECT_EQ(ErrorNumberOf([&] { (void)table(130); }), 9);
  EXPECT_EQ(ErrorNumberOf([&] { (void)table(-1); }), 9);
}

struct Dimension {
  std::string name;
  std::int32_t masses;
  std::int32_t peaks;
  std::int32_t error;
};

class CandidateDimension : public testing::TestWithParam<Dimension> {};

TEST_P(CandidateDimension, IsRefusedWithItsError) {
  const Dimension& one = GetParam();
  EXPECT_EQ(ErrorNumberOf([&] { DimensionCandidates(one.masses, one.peaks); }), one.error);
}

INSTANTIATE_TEST_SUITE_P(
    Edges, CandidateDimension,
    testing::Values(Dimension{"NoPeaks", 10, 0, 9}, Dimension{"NoMasses", 0, 13, 9},
                    Dimension{"NegativeCount", -1, 13, 9}, Dimension{"OnePairing", 1, 1, 0},
                    Dimension{"RowsBeyond32Bits", 65536, 32768, 6},
                    Dimension{"LargestCounts", std::numeric_limits<std::int32_t>::max(),
                              std::numeric_limits<std::int32_t>::max(), 6}),
    [](const auto& one) { return one.param.name; });

TEST(CandidateTable, SortingByALeavesGoodnessAndReservedInPlace) {
  CandidateTable table = TableOf(
      {{100.0, 1.0, 3.0, 0.1, 7.0}, {200.0, 2.0, 1.0, 0.2, 8.0}, {300.0, 3.0, 2.0, 0.3, 9.0}});
  SortByA(table);
  EXPECT_EQ(table, TableOf({{200.0, 2.0, 1.0, 0.1, 7.0},
                            {300.0, 3.0, 2.0, 0.2, 8.0},
                            {100.0, 1.0, 3.0, 0.3, 9.0}}));
}

TEST(CandidateTable, SortingByGoodnessLeavesOnlyReservedInPlace) {
  CandidateTable table = TableOf(
      {{100.0, 1.0, 3.0, 0.3, 7.0}, {200.0, 2.0, 1.0, 0.1, 8.0}, {300.0, 3.0, 2.0, 0.2, 9.0}});
  SortByGoodness(table);
  EXPECT_EQ(table, TableOf({{200.0, 2.0, 1.0, 0.1, 7.0},
                            {300.0, 3.0, 2.0, 0.2, 8.0},
                            {100.0, 1.0, 3.0, 0.3, 9.0}}));
}

TEST(CandidateTable, GoodnessIsTheDistanceToTheRowBeforeAndTheFirstKeepsItsOwn) {
  CandidateTable table = TableOf({{.a = 1.0, .goodness = 0.5}, {.a = 1.5}, {.a = 4.0}});
  FillGoodness(table);
  EXPECT_EQ(table, TableOf({{.a = 1.0, .goodness = 0.5},
                            {.a = 1.5, .goodness = 0.5},
                            {.a = 4.0, .goodness = 2.5}}));
}

TEST(CandidateTable, OneRowAndNoRowsAreLeftAlone) {
  CandidateTable one = TableOf({{1.0, 2.0, 3.0, 4.0, 5.0}});
  SortByA(one);
  FillGoodness(one);
  SortByGoodness(one);
  EXPECT_EQ(one, TableOf({{1.0, 2.0, 3.0, 4.0, 5.0}}));
  CandidateTable none = TableOf({});
  SortByA(none);
  FillGoodness(none);
  SortByGoodness(none);
  EXPECT_EQ(none.size(), 0U);
}

void PlainSortByA(std::vector<Candidate>& rows) {
  PlainExchangeSort(
      rows, [](const Candidate& row) { return row.a; },
      [](Candidate& a, Candidate& b) {
        std::swap(a.assumed_mass, b.assumed_mass);
        std::swap(a.time_ns, b.time_ns);
        std::swap(a.a, b.a);
      });
}

void PlainSortByGoodness(std::vector<Candidate>& rows) {
  PlainExchangeSort(
      rows, [](const Candidate& row) { return row.goodness; },
      [](Candidate& a, Candidate& b) {
        std::swap(a, b);
        std::swap(a.reserved, b.reserved);  // back to its place
      });
}

// Whole A values collide, and so do their differences; a few lack a value, and the tail of the
// table is as it was dimensioned, as after a pairing that met a fault.
std::vector<Candidate> ManyTies(std::mt19937& random, std::size_t size) {
  std::vector<Candidate> rows(size);
  for (std::size_t i = 0; i < size - size / 4; ++i) {
    const bool lacking = random() % 20 == 0;
    rows[i].assumed_mass = static_cast<double>(i);
    rows[i].time_ns = static_cast<double>(random());
    rows[i].a =
        lacking ? std::numeric_limits<double>::quiet_NaN() : static_cast<double>(random() % 16);
    rows[i].reserved = static_cast<double>(i);
  }
  return rows;
}

// NaN compares unequal to itself: rows are compared as they print.
std::string TextOf(const std::vector<Candidate>& rows) {
  std::string text;
  for (const Candidate& row : rows) {
    for (const double value : {row.assumed_mass, row.time_ns, row.a, row.goodness, row.reserved}) {
      text += std::to_string(value) + " ";
    }
    text += "\n";
  }
  return text;
}

TEST(CandidateTable, BothSortsEqualThePlainExchangeSortRowByRow) {
  std::mt19937 random(99);
  for (std::size_t size = 1; size <= 200; ++size) {
    std::vector<Candidate> plain = ManyTies(random, size);
    CandidateTable table = TableOf(plain);
    const auto rows = [&table] { return std::vector<Candidate>(table.begin(), table.end()); };
    PlainSortByA(plain);
    SortByA(table);
    ASSERT_EQ(TextOf(rows()), TextOf(plain));
    for (std::size_t i = 1; i < size; ++i) plain[i].goodness = plain[i].a - plain[i - 1].a;
    FillGoodness(table);
    PlainSortByGoodness(plain);
    SortByGoodness(table);
    ASSERT_EQ(TextOf(rows()), TextOf(plain));
  }
}

}  // namespace
}  // namespace tof
