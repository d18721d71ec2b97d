#include "hosts/native/trace_file.h"

#include <gtest/gtest.h>

#include "tests/hosts/error_number.h"

namespace tof::native {
namespace {

using tof::testing::ErrorNumberOf;

class Lines : public TextStream {
 public:
  void WriteLine(std::string_view text) override { text_ += std::string(text) + "\n"; }
  void Close() override {}
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

class TraceFileTest : public ::testing::Test {
 protected:
  std::shared_ptr<Lines> lines_ = std::make_shared<Lines>();
  TraceFile trace_{lines_};
};

TEST_F(TraceFileTest, IsOn) {
  EXPECT_EQ(trace_.GetProperty("mtraceFlag"), Variant(true));
}

TEST_F(TraceFileTest, WritesALinePerCall) {
  trace_.PutProperty("mnameOfModule", "vorntofcaliblib");
  trace_.Call("Entry", {"Outer", 4});
  trace_.Call("TracePrint", {"1.1", "Outer", 4});
  trace_.Call("Entry", {"Inner", 9});
  trace_.Call("Exit", {"Inner", 9});
  trace_.Call("Exit", {"Outer", 4});
  EXPECT_EQ(lines_->text(),
            "vorntofcaliblib\tEntry\t4\tOuter\n"
            "vorntofcaliblib\tTracePrint\t4\tOuter\t1.1\n"
            "vorntofcaliblib\tEntry\t9\tInner\n"
            "vorntofcaliblib\tExit\t9\tInner\n"
            "vorntofcaliblib\tExit\t4\tOuter\n");
}

TEST_F(TraceFileTest, KeepsATextOnItsLineAndInItsColumn) {
  trace_.Call("TracePrint", {"a\tb\r\nc", "Routine", 9});
  EXPECT_EQ(lines_->text(), "\tTracePrint\t9\tRoutine\ta b  c\n");
}

TEST_F(TraceFileTest, DoesNotKnowOtherNames) {
  EXPECT_EQ(ErrorNumberOf([&] { trace_.GetProperty("traceFlag"); }), 438);
  EXPECT_EQ(ErrorNumberOf([&] { trace_.PutProperty("mtraceFlag", true); }), 438);
  EXPECT_EQ(ErrorNumberOf([&] { trace_.Call("Print", {"a", "b", 1}); }), 438);
  EXPECT_EQ(lines_->text(), "");
}

TEST_F(TraceFileTest, RefusesAnotherNumberOfArguments) {
  EXPECT_EQ(ErrorNumberOf([&] { trace_.Call("Entry", {"Routine"}); }), 450);
  EXPECT_EQ(ErrorNumberOf([&] { trace_.Call("TracePrint", {"text", "Routine"}); }), 450);
  EXPECT_EQ(lines_->text(), "");
}

}  // namespace
}  // namespace tof::native
