// Lists of numbers that a user gives.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tof::cli {

// "M1,M2,...": m/z values, blanks around them allowed. `source` names the list in messages. Raises
// an InputError for an empty list and for anything that is not a finite, positive number.
std::vector<double> ParseMassList(std::string_view text, const std::string& source);

// The masses of a list, or of the file of that name: one a line, '#' starts a comment, further
// columns are ignored.
std::vector<double> MassesFromListOrFile(const std::string& list_or_path);

struct MassesAndTimes {
  std::vector<double> masses;    // m/z
  std::vector<double> times_ns;  // of the same length
};

// Two columns, "mass time_ns", separated by blanks, tabs or commas; '#' starts a comment. Raises an
// InputError, with line and column, for anything else, for masses that are not positive and for a
// mass or a time that is there twice.
MassesAndTimes ReadMassesAndTimes(const std::filesystem::path& path);

}  // namespace tof::cli
