#include "instruments/masstime/stored_peak_list.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "component/automation/error.h"

namespace tof::masstime {
namespace {

PeakRecord PeakAt(double position, double height) {
  PeakRecord record;
  record.position = position;
  record.height = height;
  return record;
}

std::int32_t ErrorNumber(const std::function<void()>& call) {
  try {
    call();
  } catch (const AutomationError& error) {
    return error.number();
  }
  return 0;
}

TEST(StoredPeakList, KeepsRecordsByIndexFromZero) {
  StoredPeakList list;
  list.Add(PeakAt(100.0, 1.0));
  list.Add(PeakAt(200.0, 2.0));
  EXPECT_EQ(list.Count(), 2);
  EXPECT_EQ(list.GetRecord(1), PeakAt(200.0, 2.0));
  list.SetRecord(0, PeakAt(50.0, 3.0));
  EXPECT_EQ(list.GetRecord(0), PeakAt(50.0, 3.0));
  list.Initialize();
  EXPECT_EQ(list.Count(), 0);
}

TEST(StoredPeakList, RefusesAnIndexOutsideTheList) {
  StoredPeakList list;
  list.Add(PeakAt(100.0, 1.0));
  EXPECT_EQ(ErrorNumber([&] { list.GetRecord(1); }), 9);
  EXPECT_EQ(ErrorNumber([&] { list.GetRecord(-1); }), 9);
  EXPECT_EQ(ErrorNumber([&] { list.SetRecord(1, {}); }), 9);
}

TEST(StoredPeakList, PreparingDropsEmptyRecordsAndSortsByPosition) {
  StoredPeakList list;
  list.Add(PeakAt(300.0, 1.0));
  list.Add(PeakAt(0.0, 0.0));
  list.Add(PeakAt(100.0, 9.0));
  list.Add(PeakAt(200.0, std::numeric_limits<double>::quiet_NaN()));
  list.Add(PeakAt(std::numeric_limits<double>::quiet_NaN(), 5.0));
  list.PreparePeakList(5, 0);
  ASSERT_EQ(list.Count(), 2);
  EXPECT_EQ(list.GetRecord(0), PeakAt(100.0, 9.0));
  EXPECT_EQ(list.GetRecord(1), PeakAt(300.0, 1.0));
}

TEST(StoredPeakList, PreparingKeepsASignalHoweverSmall) {
  StoredPeakList list;
  list.Add(PeakAt(100.0, std::numeric_limits<double>::denorm_min()));
  list.Add(PeakAt(200.0, 0.0));
  list.Add(PeakAt(300.0, -1.0));
  list.PreparePeakList(5, 0);
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.GetRecord(0).position, 100.0);
}

TEST(StoredPeakList, PreparingCanSortByAnotherField) {
  StoredPeakList list;
  list.Add(PeakAt(100.0, 9.0));
  list.Add(PeakAt(300.0, 1.0));
  list.PreparePeakList(0, 5);
  EXPECT_EQ(list.GetRecord(0), PeakAt(300.0, 1.0));
}

TEST(StoredPeakList, PreparingRefusesAFieldThatARecordDoesNotHave) {
  StoredPeakList list;
  EXPECT_EQ(ErrorNumber([&] { list.PreparePeakList(8, 0); }), 5);
  EXPECT_EQ(ErrorNumber([&] { list.PreparePeakList(5, -1); }), 5);
}

}  // namespace
}  // namespace tof::masstime
