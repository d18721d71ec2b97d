#include <gtest/gtest.h>

#include "component/automation/error.h"
#include "tests/component/error_number_of.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

class SetpointTableTest : public testing::Test {
 protected:
  std::shared_ptr<SetpointTable> Table() {
    return test_.instrument.CreateDataDictionary()->GetSetpointTable();
  }

  TestInstrument test_;
};

TEST_F(SetpointTableTest, GivesTheDescribedValuesInTheirTypes) {
  EXPECT_EQ(Table()->GetSetpoint(149), Variant(std::int16_t{1}));
  EXPECT_EQ(Table()->GetSetpoint(117), Variant(std::int32_t{0}));
  EXPECT_EQ(Table()->GetSetpoint(162), Variant(false));
  EXPECT_EQ(Table()->GetSetpoint(83), Variant(75.0));
}

TEST_F(SetpointTableTest, RemembersAWriteForEveryOtherTable) {
  Table()->SetSetpoint(149, ValueType::kInt16, Variant(std::int16_t{2}));
  EXPECT_EQ(Table()->GetSetpoint(149), Variant(std::int16_t{2}));
}

TEST_F(SetpointTableTest, KeepsTheTypeOfASetpoint) {
  Table()->SetSetpoint(83, ValueType::kInt16, Variant(std::int16_t{40}));
  EXPECT_EQ(Table()->GetSetpoint(83), Variant(40.0));
  // Written as a 16-bit integer: halves go to the even neighbour on the way.
  Table()->SetSetpoint(83, ValueType::kInt16, Variant(42.5));
  EXPECT_EQ(Table()->GetSetpoint(83), Variant(42.0));
}

TEST_F(SetpointTableTest, ReachesASetpointThroughItsOtherId) {
  Table()->SetSetpoint(84, ValueType::kDouble, Variant(25.0));
  EXPECT_EQ(Table()->GetSetpoint(83), Variant(25.0));
  EXPECT_EQ(Table()->GetSetpoint(84), Variant(25.0));
  // Still on its way.
  EXPECT_EQ(Table()->GetCurrentValue(84), Variant(75.0));
  EXPECT_EQ(test_.instrument.CreateAcqController()->ReadSetpoint(84), Variant(25.0));
}

TEST_F(SetpointTableTest, RefusesWhatItDoesNotHave) {
  EXPECT_EQ(ErrorNumberOf([&] { Table()->GetSetpoint(999); }), 5);
  EXPECT_EQ(ErrorNumberOf([&] { Table()->SetSetpoint(999, ValueType::kDouble, Variant(1.0)); }), 5);
  EXPECT_EQ(ErrorNumberOf([&] { Table()->SetSetpoint(149, ValueType::kInt16, Variant("x")); }), 13);
  EXPECT_EQ(Table()->GetSetpoint(149), Variant(std::int16_t{1}));
}

TEST_F(SetpointTableTest, TakesTheTimeOfAWrite) {
  Table()->SetSetpoint(149, ValueType::kInt16, Variant(std::int16_t{1}));
  EXPECT_DOUBLE_EQ(test_.clock->Seconds(), 0.02);
  Table()->GetSetpoint(149);
  EXPECT_DOUBLE_EQ(test_.clock->Seconds(), 0.02);
}

TEST_F(SetpointTableTest, ShowsTheVoltageOnItsWay) {
  Table()->SetSetpoint(83, ValueType::kDouble, Variant(25.0));
  EXPECT_EQ(Table()->GetSetpoint(83), Variant(25.0));
  EXPECT_EQ(Table()->GetCurrentValue(83), Variant(75.0));
  test_.clock->Advance(10.0);
  EXPECT_NEAR(*Table()->GetCurrentValue(83).As<double>(), 25.0, 1e-9);
  EXPECT_EQ(Table()->GetCurrentValue(149), Variant(std::int16_t{1}));
}

TEST_F(SetpointTableTest, IsCounted) {
  Table()->GetSetpoint(149);
  Table()->GetCurrentValue(149);
  test_.instrument.CreateAcqController()->ReadSetpoint(149);
  Table()->SetSetpoint(149, ValueType::kInt16, Variant(std::int16_t{1}));
  EXPECT_EQ(test_.instrument.Counted().setpoint_reads, 3);
  EXPECT_EQ(test_.instrument.Counted().setpoint_writes, 1);
}

}  // namespace
}  // namespace tof::standin
