#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <sstream>

#include "hosts/native/date_time.h"
#include "hosts/native/native_host.h"
#include "hosts/native/real_time_clock.h"
#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "tests/hosts/error_number.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::native {
namespace {

using tof::testing::ErrorNumberOf;
using tof::testing::TemporaryFolder;

class Nameless : public LateBoundObject {
 public:
  Variant GetProperty(std::string_view) override { return 7; }
  void PutProperty(std::string_view, const Variant&) override {}
  Variant Call(std::string_view, const std::vector<Variant>&) override { return {}; }
};

class PortableHostTest : public ::testing::Test {
 protected:
  std::ostringstream messages_;
  NativeHost host_{messages_};
};

TEST_F(PortableHostTest, ShowsAMessageBoxAsOneLine) {
  host_.ShowMessageBox("Error\r\nin two lines");
  EXPECT_EQ(messages_.str(), "message box: Error  in two lines\n");
}

TEST_F(PortableHostTest, CreatesRegisteredObjectsAnew) {
  host_.RegisterObject("some.object", [] { return std::make_shared<Nameless>(); });
  const auto first = host_.CreateObject("some.object");
  EXPECT_EQ(first->GetProperty("any"), Variant(7));
  EXPECT_NE(first, host_.CreateObject("some.object"));
}

TEST_F(PortableHostTest, CannotCreateAnObjectThatIsNotRegistered) {
  try {
    host_.CreateObject("vornutils.trace.1");
    FAIL() << "created";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 429);
    EXPECT_EQ(error.description(), "ActiveX component can't create object");
  }
}

TEST_F(PortableHostTest, ListsTheFilesOfAllItsFileSystems) {
  const TemporaryFolder folder;
  host_.CreateFileSystem()->CreateTextFile(folder / "a.txt");
  host_.CreateFileSystem()->CreateTextFile(folder / "b.txt");
  EXPECT_THAT(host_.Files().written, ::testing::ElementsAre(folder / "a.txt", folder / "b.txt"));
}

TEST(NativeHost, DoesNotWaitForNothing) {
  std::ostringstream messages;
  NativeHost host(messages);
  EXPECT_EQ(ErrorNumberOf([&] {
              host.Sleep(0);
              host.Sleep(-1);
            }),
            0);
}

TEST(NativeHost, TellsTheLocalTimeOfTheMachine) {
  std::ostringstream messages;
  NativeHost host(messages);
  const auto before = CalendarSecondsOf(LocalTimeNow());
  const auto now = CalendarSecondsOf(host.Now());
  const auto after = CalendarSecondsOf(LocalTimeNow());
  EXPECT_LE(before, now);
  EXPECT_LE(now, after);
}

TEST(NativeHost, GivesAnotherSeedEveryTime) {
  std::ostringstream messages;
  NativeHost host(messages);
  std::set<std::uint32_t> seeds;
  for (int i = 0; i < 100; ++i) seeds.insert(host.RandomSeed());
  EXPECT_GT(seeds.size(), 99u);
}

class VirtualTimeHostTest : public ::testing::Test {
 protected:
  std::ostringstream messages_;
  std::shared_ptr<VirtualClock> clock_ = std::make_shared<VirtualClock>();
  VirtualTimeHost host_{messages_, clock_, 1};
};

TEST_F(VirtualTimeHostTest, StartsAtAFixedDate) {
  EXPECT_EQ(host_.Now(), (DateTime{2024, 3, 21, 9, 0, 0}));
}

TEST_F(VirtualTimeHostTest, LetsTheClockRunWhileItSleeps) {
  host_.Sleep(400);
  EXPECT_DOUBLE_EQ(clock_->Seconds(), 0.4);
  host_.Sleep(-400);
  EXPECT_DOUBLE_EQ(clock_->Seconds(), 0.4);
}

TEST_F(VirtualTimeHostTest, CountsItsSleepsByTheirLength) {
  host_.Sleep(400);
  host_.Sleep(1000);
  host_.Sleep(400);
  EXPECT_EQ(host_.SleepsOf(400), 2);
  EXPECT_EQ(host_.SleepsOf(1000), 1);
  EXPECT_EQ(host_.SleepsOf(500), 0);
}

TEST_F(VirtualTimeHostTest, TellsTheTimeThatTheInstrumentSpent) {
  clock_->Advance(15.0 * 3600.0 + 61.9);
  EXPECT_EQ(host_.Now(), (DateTime{2024, 3, 22, 0, 1, 1}));
}

TEST_F(VirtualTimeHostTest, GivesTheSameSeedsForTheSameSeed) {
  VirtualTimeHost same(messages_, clock_, 1);
  VirtualTimeHost other(messages_, clock_, 2);
  const std::uint32_t first = host_.RandomSeed();
  const std::uint32_t second = host_.RandomSeed();
  EXPECT_NE(first, second);
  EXPECT_EQ(same.RandomSeed(), first);
  EXPECT_EQ(same.RandomSeed(), second);
  EXPECT_NE(other.RandomSeed(), first);
}

TEST(VirtualClock, NeverRunsBackwards) {
  VirtualClock clock;
  clock.Advance(1.5);
  clock.Advance(-1.0);
  EXPECT_DOUBLE_EQ(clock.Seconds(), 1.5);
}

TEST(RealTimeClock, RunsByItselfAndDoesNotWaitForNothing) {
  RealTimeClock clock;
  const double before = clock.Seconds();
  clock.Advance(0.0);
  clock.Advance(-1.0);
  EXPECT_GE(before, 0.0);
  EXPECT_LT(before, 3600.0);  // it began just now
  EXPECT_GE(clock.Seconds(), before);
  while (clock.Seconds() == before) {
  }
}

TEST(DateTime, RoundTripsOverALeapDay) {
  const DateTime leap_day{2024, 2, 29, 23, 59, 59};
  EXPECT_EQ(DateTimeOf(CalendarSecondsOf(leap_day)), leap_day);
  EXPECT_EQ(DateTimeOf(CalendarSecondsOf(leap_day) + std::chrono::seconds(1)),
            (DateTime{2024, 3, 1, 0, 0, 0}));
}

// The text follows the user's LC_TIME; in the plain locale it is month/day/year.
TEST(DateTime, IsWrittenAsTheLocaleWritesIt) {
  const char* const kVariables[] = {"LC_ALL", "LC_TIME", "LANG"};
  for (const char* variable : kVariables) ASSERT_EQ(setenv(variable, "C", 1), 0);
  EXPECT_EQ(UserDateTimeText({2024, 3, 1, 14, 5, 9}), "03/01/24 14:05:09");
  ASSERT_EQ(setenv("LC_ALL", "no_such_locale", 1), 0);
  EXPECT_EQ(UserDateTimeText({2024, 3, 1, 14, 5, 9}), "03/01/24 14:05:09");
}

}  // namespace
}  // namespace tof::native
