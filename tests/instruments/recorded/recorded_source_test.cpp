#include "instruments/recorded/recorded_source.h"

#include <gmock/gmock.h>

#include "tests/instruments/counting_clock.h"
#include "tests/instruments/spectra/expect_input_error.h"
#include "tests/instruments/spectra/scratch_file.h"

namespace tof::recorded {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class RecordedSourceTest : public testing::Test {
 protected:
  RecordedSource Source(RecordedFiles files) { return RecordedSource(files, "/", clock_); }

  spectra::ScratchFile first_{"1 10\n2 11\n", "_1.txt"};
  spectra::ScratchFile second_{"3 12\n3.5 13\n", "_2.txt"};
  std::shared_ptr<spectra::CountingClock> clock_ = std::make_shared<spectra::CountingClock>();
};

TEST_F(RecordedSourceTest, GoesRoundAndRound) {
  RecordedSource source = Source({{{first_.Path()}, {second_.Path()}}, 0.0, 1.0});
  EXPECT_EQ(source.Acquire()->intensity[0], 10.0);
  EXPECT_EQ(source.Acquire()->intensity[0], 12.0);
  EXPECT_EQ(source.Acquire()->intensity[0], 10.0);
}

TEST_F(RecordedSourceTest, RunsOnByItselfBetweenLooksAtTheNewest) {
  RecordedSource source = Source({{{first_.Path()}, {second_.Path()}}, 0.0, 1.0});
  EXPECT_EQ(source.Newest()->intensity[0], 10.0);
  EXPECT_EQ(source.Newest()->intensity[0], 12.0);
  EXPECT_EQ(clock_->Seconds(), 0.0);
}

TEST_F(RecordedSourceTest, TakesTheTimeOfASpectrum) {
  RecordedSource source = Source({{{first_.Path()}}, 0.0, 0.5});
  source.Acquire();
  source.Acquire();
  EXPECT_EQ(clock_->Seconds(), 1.0);
}

TEST_F(RecordedSourceTest, ShiftsTheTimes) {
  RecordedSource source = Source({{{first_.Path()}}, -0.25, 1.0});
  EXPECT_THAT(source.Acquire()->time_ns, ElementsAre(0.75, 1.75));
}

TEST_F(RecordedSourceTest, HasTheBinsOfItsFirstSpectrum) {
  EXPECT_DOUBLE_EQ(Source({{{second_.Path()}, {first_.Path()}}, 0.0, 1.0}).BinWidthNs(), 0.5);
}

TEST_F(RecordedSourceTest, IsNotMovedBySetpoints) {
  RecordedSource source = Source({{{first_.Path()}}, 0.0, 1.0});
  source.SetpointWritten(83, 20.0);
  EXPECT_FALSE(source.Control());
  EXPECT_EQ(source.TrueValue(83), std::nullopt);
  EXPECT_EQ(clock_->Seconds(), 0.0);
}

TEST_F(RecordedSourceTest, NamesTheFileThatItCannotRead) {
  EXPECT_THAT(spectra::InputErrorOf([&] {
                RecordedSource({{{"absent.txt"}}, 0.0, 1.0}, "/no/such/folder", clock_);
              }),
              HasSubstr("/no/such/folder/absent.txt: found No such file or directory"));
}

}  // namespace
}  // namespace tof::recorded
