// Golden files: approved bytes that a test's output must equal, to the last CR LF and blank.
//
// A missing file fails. Approving is a command of its own, tools/approve_goldens.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tof::fakes {

// Where the two texts first differ, with both lines in a form that shows every byte; none when they
// are equal byte by byte.
std::optional<std::string> FirstDifference(std::string_view approved, std::string_view actual);

enum class GoldenMode { kCompare, kApprove };

// kApprove when the environment asks for it (TOF_APPROVE_GOLDENS=1), as the command does.
GoldenMode GoldenModeOfThisRun();

// Compares `actual` with the approved file, or replaces the file by it.
::testing::AssertionResult MatchesGoldenFile(const std::filesystem::path& file,
                                             std::string_view actual,
                                             GoldenMode mode = GoldenModeOfThisRun());

// The same for a file below the project's tests/golden.
::testing::AssertionResult MatchesGolden(const std::string& name, std::string_view actual);

}  // namespace tof::fakes
