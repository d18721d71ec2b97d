#include "hosts/drift/data_set_reader.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "instruments/spectra/input_error.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::drift {
namespace {

using ::testing::HasSubstr;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

const std::string kHeading = "Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance\r\n";
const std::string kGood = "20240229, 130545, 3, 1, 46014.5, 40000.25\r\n";

struct Reading {
  std::vector<DataRow> rows;
  ReadingResult result;
};

Reading Read(const std::string& text) {
  const TemporaryFolder folder;
  WriteBytes(folder / "data.csv", text);
  Reading reading;
  reading.result = ReadDataSet(
      folder / "data.csv", [&](const DataRow& row) { reading.rows.push_back(row); },
      [](std::uint64_t) {});
  return reading;
}

TEST(DataSetReader, ReadsWhatACalibrationWrites) {
  std::vector<DataRow> rows;
  const auto result = ReadDataSet(
      TOF_SOURCE_DIR "/tests/golden/aic_ramp_by_mass/data_set.csv",
      [&](const DataRow& row) { rows.push_back(row); }, [](std::uint64_t) {});
  EXPECT_EQ(result.rows, 8u);
  EXPECT_EQ(result.bad_rows, 0u);
  ASSERT_EQ(rows.size(), 8u);
  EXPECT_EQ(MomentText(rows[7].moment), "2024-02-29 13:05:45");
  EXPECT_EQ(rows[7].mass, 3);
  EXPECT_EQ(rows[7].measurement, 1);
  EXPECT_EQ(rows[7].time_ns, 47014.7286905462);
  EXPECT_EQ(rows[7].abundance, 40000.25);
}

TEST(DataSetReader, PassesOverAHeadingBetweenRows) {
  const Reading reading = Read(kHeading + kGood + kHeading + kGood);
  EXPECT_EQ(reading.result.rows, 2u);
  EXPECT_EQ(reading.result.bad_rows, 0u);
}

TEST(DataSetReader, ReadsAFileWithoutHeadingAndWithoutALastLineEnd) {
  EXPECT_EQ(Read(kGood + kGood.substr(0, kGood.size() - 2)).result.rows, 2u);
  EXPECT_EQ(Read("").result.rows, 0u);
}

TEST(DataSetReader, CountsBadRowsAndGoesOn) {
  const Reading reading = Read(kHeading + kGood + "20240229, 130545, 3\r\n" + kGood);
  EXPECT_EQ(reading.rows.size(), 2u);
  ASSERT_EQ(reading.result.bad_rows, 1u);
  EXPECT_EQ(reading.result.first_bad_rows[0].line, 3u);
  EXPECT_EQ(reading.result.first_bad_rows[0].why, "fewer than 6 columns");
}

struct Bad {
  std::string name;
  std::string row;
  std::string why;
};

class BadRows : public ::testing::TestWithParam<Bad> {};

TEST_P(BadRows, AreShownWithTheirReason) {
  const Reading reading = Read(kGood + GetParam().row + "\r\n");
  EXPECT_EQ(reading.result.rows, 1u);
  ASSERT_EQ(reading.result.bad_rows, 1u);
  EXPECT_EQ(reading.result.first_bad_rows[0].line, 2u);
  EXPECT_THAT(reading.result.first_bad_rows[0].why, HasSubstr(GetParam().why));
}

INSTANTIATE_TEST_SUITE_P(
    DataSetReader, BadRows,
    ::testing::Values(
        Bad{"NoSuchDay", "20230229, 130545, 3, 1, 4.5, 4", "Acq Date: found \"20230229\""},
        Bad{"ShortDate", "2023022, 130545, 3, 1, 4.5, 4", "expected YYYYMMDD"},
        Bad{"NoSuchHour", "20240229, 240000, 3, 1, 4.5, 4", "Acq Time: found \"240000\""},
        Bad{"TextInTime", "20240229, 13:05:45, 3, 1, 4.5, 4", "expected HHmmss"},
        Bad{"NegativeMass", "20240229, 130545, -1, 1, 4.5, 4", "MassIdx: found -1"},
        Bad{"LargeMass", "20240229, 130545, 10000, 1, 4.5, 4", "expected 0 to 9999"},
        Bad{"HalfMass", "20240229, 130545, 1.5, 1, 4.5, 4", "MassIdx: found \"1.5\""},
        Bad{"NoTime", "20240229, 130545, 3, 1, NaN, 4", "TOF: found nan"},
        Bad{"ZeroTime", "20240229, 130545, 3, 1, 0, 4", "expected a positive flight time"},
        Bad{"TextBehindTime", "20240229, 130545, 3, 1, 4.5ns, 4", "TOF: found \"4.5ns\""},
        Bad{"InfiniteAbundance", "20240229, 130545, 3, 1, 4.5, Infinity", "expected a finite one"},
        Bad{"DecimalComma", "20240229, 130545, 3, 1, 4,5, 4", "more than 6 columns"},
        Bad{"Empty", "", "fewer than 6 columns"}),
    [](const auto& row) { return row.param.name; });

TEST(DataSetReader, ShowsTheFirstBadRowsOfMany) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += kGood + "x\r\n";
  const ReadingResult result = Read(text).result;
  EXPECT_EQ(result.rows, 5000u);
  EXPECT_EQ(result.bad_rows, 5000u);
  EXPECT_EQ(result.first_bad_rows.size(), kBadRowsShown);
}

TEST(DataSetReader, RefusesAFileOfAnotherKind) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "some, other, table\n";
  try {
    Read(text);
    FAIL() << "it was taken";
  } catch (const spectra::InputError& error) {
    EXPECT_THAT(error.what(), HasSubstr("data.csv:1:1: found no row in 1000 lines"));
  }
}

TEST(DataSetReader, RefusesAFileThatIsNotThere) {
  EXPECT_THROW(ReadDataSet(
                   "/nowhere/data.csv", [](const DataRow&) {}, [](std::uint64_t) {}),
               spectra::InputError);
}

}  // namespace
}  // namespace tof::drift
