#include "component/calibration/peak_lists.h"

#include <algorithm>

#include "tests/component/calibration/calibration_calls.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::FlagRead;
using fakes::InOrder;
using fakes::Journal;
using fakes::Repeated;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class PeakLists : public fakes::CalibrationFixture {
 protected:
  PeakLists() { host.trace->on = false; }

  void Get(std::int32_t n_sought) {
    Instrument parts = Collaborators();
    GetPeakListsForLikelyACalculation(parts, in_nanoseconds, second, n_sought,
                                      BoundedArray<double>(instrument.sample_masses));
  }
  // Fails the search `n` (from 0) of a Get(3) with the trace on.
  void FailFromSearch(std::size_t n) {
    journal.fail_from = Journal::kNever;
    host.trace->on = true;
    Get(3);
    const auto& calls = journal.entries();
    auto call = calls.begin();
    for (std::size_t k = 0;; ++k, ++call) {
      call = std::find(call, calls.end(), "SpecParser.FindPeaks(12000,72000,3)");
      if (k == n) break;
    }
    journal.fail_from = static_cast<std::size_t>(call - calls.begin());
    host.trace->Forget();
  }
  static std::vector<double> Positions(const std::shared_ptr<PeakList>& list) {
    std::vector<double> positions;
    for (std::int32_t i = 0; i < list->Count(); ++i)
      positions.push_back(list->GetRecord(i).position);
    return positions;
  }
  std::vector<double> TrueTimes() const {
    std::vector<double> times_ns;
    for (const double mass : instrument.sample_masses)
      times_ns.push_back(instrument.TrueTime(mass));
    return times_ns;
  }

  std::shared_ptr<PeakList> in_nanoseconds;
  std::shared_ptr<PeakList> second;
};

const Calls kRangeRead = {"DataDictionary.GetAcqStartTime", "DataDictionary.GetAcqEndTime"};

Calls ListSized(int n) {
  return InOrder({{"Create.PeakList"}, {"PeakList.Initialize"}, Repeated(n, {"PeakList.Add"})});
}

TEST_F(PeakLists, AreFilledFromTheWholeRangeInThisOrderWithoutAPartition) {
  Get(8);
  const Calls searched = {"SpecParser.FindPeaks(12000,72000,8)", "PeakList.PreparePeakList(5,0)"};
  EXPECT_THAT(journal.entries(), ElementsAreArray(InOrder({kRangeRead, ListSized(8), ListSized(8),
                                                           FlagRead("CalcLikelyA_PartitionSpec"),
                                                           searched, searched})));
  EXPECT_EQ(Positions(in_nanoseconds), TrueTimes());
  EXPECT_EQ(Positions(second), TrueTimes());
}

class PartitionedPeakLists : public PeakLists {
 protected:
  PartitionedPeakLists() {
    instrument.flags["CalcLikelyA_PartitionSpec"] = "Yes";
    instrument.flags["CalcLikelyA_PartitionSpec_PartitionMz"] = "900";
    // 900 at exactly 30,300 ns, between the third and the fourth ion.
    instrument.in_force = instrument.NewCoefficients(0.001, 300.0);
    instrument.true_a_per_ns = 0.001;
    instrument.sample_masses = {169.0, 256.0, 625.0, 961.0, 1156.0};
  }
};

TEST_F(PartitionedPeakLists, AreJoinedFromTheTwoRangesInThisOrder) {
  Get(5);
  const Calls lower = InOrder(
      {ListSized(0), {"SpecParser.FindPeaks(12000,30300,3)"}, {"PeakList.PreparePeakList(5,0)"}});
  const Calls upper = InOrder(
      {ListSized(0), {"SpecParser.FindPeaks(30300,72000,2)"}, {"PeakList.PreparePeakList(5,0)"}});
  const std::vector<std::string> found = journal.Only({"SpecParser", "PeakList.Prepare"});
  EXPECT_THAT(found,
              ElementsAre("SpecParser.FindPeaks(12000,30300,3)", "PeakList.PreparePeakList(5,0)",
                          "SpecParser.FindPeaks(12000,30300,3)", "PeakList.PreparePeakList(5,0)",
                          "SpecParser.FindPeaks(30300,72000,2)", "PeakList.PreparePeakList(5,0)",
                          "SpecParser.FindPeaks(30300,72000,2)", "PeakList.PreparePeakList(5,0)"));
  const Calls begin = InOrder({kRangeRead,
                               ListSized(5),
                               ListSized(5),
                               FlagRead("CalcLikelyA_PartitionSpec"),
                               FlagRead("CalcLikelyA_PartitionSpec_PartitionMz"),
                               {"AcqController.GetCurrentMassCalObject"},
                               {"MassCalCoefficients.MassToTime"},
                               lower,
                               lower,
                               upper,
                               upper});
  ASSERT_GE(journal.count(), begin.size());
  EXPECT_THAT(Calls(journal.entries().begin(),
                    journal.entries().begin() + static_cast<std::ptrdiff_t>(begin.size())),
              ElementsAreArray(begin));
  EXPECT_EQ(Positions(in_nanoseconds), TrueTimes());
  EXPECT_EQ(Positions(second), TrueTimes());
}

TEST_F(PartitionedPeakLists, CountOnlyMassesAboveThePartitionForTheUpperRange) {
  instrument.flags["CalcLikelyA_PartitionSpec_PartitionMz"] = "961";
  Get(7);
  EXPECT_THAT(journal.entries(), Contains("SpecParser.FindPeaks(31300,72000,1)"));
  EXPECT_THAT(journal.entries(), Contains("SpecParser.FindPeaks(12000,31300,6)"));
}

TEST_F(PartitionedPeakLists, AreShorterWhenARangeHoldsFewerPeaksThanSought) {
  Get(8);  // 6 sought below, where 3 are
  EXPECT_EQ(Positions(in_nanoseconds), TrueTimes());
}

TEST_F(PartitionedPeakLists, StartTheUpperPeaksBehindTheLowerOnes) {
  instrument.most_peaks_found = {1, 2, 2, 1};
  Get(5);
  const auto times_ns = TrueTimes();
  EXPECT_THAT(Positions(in_nanoseconds), ElementsAre(times_ns[0], times_ns[3], times_ns[4]));
  EXPECT_THAT(Positions(second), ElementsAre(times_ns[0], times_ns[1], times_ns[3]));
}

TEST_F(PartitionedPeakLists, AreEmptyWhenThePartitionIsNoNumber) {
  host.trace->on = true;
  instrument.flags["CalcLikelyA_PartitionSpec_PartitionMz"] = "";
  Get(4);
  EXPECT_THAT(Positions(in_nanoseconds), IsEmpty());
  EXPECT_THAT(Positions(second), IsEmpty());
  EXPECT_THAT(host.trace->Texts(), ElementsAre("GetPeakListsForLikelyACalculation.Error[13]"));
}

TEST_F(PeakLists, AreNotPartitionedByAFlagInLowerCase) {
  instrument.flags["CalcLikelyA_PartitionSpec"] = "yes";
  Get(8);
  EXPECT_EQ(journal.Only({"SpecParser.FindPeaks(12000,72000,8)"}).size(), 2U);
}

// Lists as they were sized would pass for peaks at time 0.
TEST_F(PeakLists, AreBothEmptyWhenASearchFails) {
  host.trace->on = true;
  for (const std::size_t search : {0U, 1U}) {
    host.trace->Forget();
    FailFromSearch(search);
    Get(3);
    EXPECT_THAT(Positions(in_nanoseconds), IsEmpty()) << search;
    EXPECT_THAT(Positions(second), IsEmpty()) << search;
    EXPECT_THAT(host.trace->Texts(), ElementsAre("GetPeakListsForLikelyACalculation.Error[4711]"));
  }
}

TEST_F(PeakLists, AreNoneWhenTheyCannotBeEmptied) {
  FailFromSearch(1);
  Instrument parts = Collaborators();
  journal.fail_count = Journal::kNever;
  GetPeakListsForLikelyACalculation(parts, in_nanoseconds, second, 3,
                                    BoundedArray<double>(instrument.sample_masses));
  EXPECT_EQ(in_nanoseconds, nullptr);
  EXPECT_EQ(second, nullptr);
}

TEST_F(PeakLists, AreNoneWhenTheyCannotBeCreated) {
  journal.fail_operation = "Create.PeakList";
  Get(3);
  EXPECT_EQ(in_nanoseconds, nullptr);
  EXPECT_EQ(second, nullptr);
}

TEST_F(PeakLists, AreEmptyWhenNothingIsFound) {
  instrument.sample_masses.clear();
  Get(2);
  EXPECT_THAT(Positions(in_nanoseconds), IsEmpty());
}

}  // namespace
}  // namespace tof
