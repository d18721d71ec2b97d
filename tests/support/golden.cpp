#include "tests/support/golden.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tof::fakes {
namespace {

namespace fs = std::filesystem;

std::string Visible(std::string_view bytes) {
  constexpr char kHex[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r') {
      text += "<CR>";
    } else if (c == '\n') {
      text += "<LF>";
    } else if (byte < 0x20 || byte >= 0x7F) {
      text += std::string("<") + kHex[byte / 16] + kHex[byte % 16] + ">";
    } else {
      text += c;
    }
  }
  return text + "|";
}

// The line that byte `at` belongs to, with its end.
std::string_view LineAt(std::string_view text, std::size_t at) {
  const std::size_t before = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
  const std::size_t end = text.find('\n', at);
  return text.substr(begin, end == std::string_view::npos ? end : end + 1 - begin);
}

}  // namespace

std::optional<std::string> FirstDifference(std::string_view approved, std::string_view actual) {
  if (approved == actual) return std::nullopt;
  const auto [in_approved, in_actual] =
      std::mismatch(approved.begin(), approved.end(), actual.begin(), actual.end());
  const auto at = static_cast<std::size_t>(in_approved - approved.begin());
  const auto line = 1 + std::count(approved.begin(), in_approved, '\n');
  return "line " + std::to_string(line) + ", byte " + std::to_string(at) +
         "\n  approved: " + Visible(LineAt(approved, at)) +
         "\n  actual:   " + Visible(LineAt(actual, at));
}

GoldenMode GoldenModeOfThisRun() {
  const char* approve = std::getenv("TOF_APPROVE_GOLDENS");
  return approve != nullptr && std::string_view(approve) == "1" ? GoldenMode::kApprove
                                                                : GoldenMode::kCompare;
}

::testing::AssertionResult MatchesGoldenFile(const fs::path& file, std::string_view actual,
                                             GoldenMode mode) {
  if (mode == GoldenMode::kApprove) {
    fs::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(actual.data(), static_cast<std::streamsize>(actual.size()));
    out.close();
    if (!out) return ::testing::AssertionFailure() << file << " cannot be written";
    return ::testing::AssertionSuccess();
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    return ::testing::AssertionFailure()
           << file << " is missing; look at what the test produces, then run tools/approve_goldens";
  }
  const std::string approved{std::istreambuf_iterator<char>(in), {}};
  if (const auto difference = FirstDifference(approved, actual)) {
    return ::testing::AssertionFailure()
           << file << " differs from what was produced in " << *difference;
  }
  return ::testing::AssertionSuccess();
}

::testing::AssertionResult MatchesGolden(const std::string& name, std::string_view actual) {
  return MatchesGoldenFile(fs::path(TOF_SOURCE_DIR) / "tests" / "golden" / name, actual);
}

}  // namespace tof::fakes
