// The data-set files that abundance-immune calibrations append to.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tof::drift {

// One measurement of one mass.
struct DataRow {
  std::int64_t moment = 0;  // of the calibration: seconds from 1970-01-01 in the instrument's time
  std::int32_t mass = 0;    // index in the calibration's masses
  std::int32_t measurement = 0;
  double time_ns = 0.0;
  double abundance = 0.0;
};

inline constexpr std::int32_t kLargestMassIndex = 9999;

// A line that is no row.
struct BadRow {
  std::uint64_t line = 0;  // from 1
  std::string why;
};

struct ReadingResult {
  std::uint64_t rows = 0;
  std::uint64_t bad_rows = 0;
  std::vector<BadRow> first_bad_rows;  // the first kBadRowsShown
};
inline constexpr std::size_t kBadRowsShown = 20;

// Hands the rows on, in their order, without keeping them; headings, which stand between rows where
// files were put together, are passed over. `progress` is told the bytes read now and then, by the
// calling thread. Raises an InputError for a file that can't be read, has a line of more than 16
// MB, or begins with a thousand lines none of which is a row.
ReadingResult ReadDataSet(const std::filesystem::path& path,
                          const std::function<void(const DataRow&)>& on_row,
                          const std::function<void(std::uint64_t)>& progress);

// "2024-02-29 13:05:09".
std::string MomentText(std::int64_t moment);

}  // namespace tof::drift
