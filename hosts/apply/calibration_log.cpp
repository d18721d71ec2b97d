#include "hosts/apply/calibration_log.h"

#include <charconv>
#include <cstdlib>
#include <optional>

#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::apply {
namespace {

using spectra::InputError;
using spectra::ParseDouble;

constexpr std::string_view kHeader = "===CALIBRATION ";
constexpr std::string_view kOtherHeader = "===CALIBRATION DATA ";
constexpr long kLongestFitSeconds = 60;

std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    // A line that is not ended may lack digits.
    if (end == std::string_view::npos) break;
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(line);
    text.remove_prefix(end + 1);
  }
  return lines;
}

// What stands behind `label` in a line that begins with it.
std::optional<std::string_view> Behind(std::string_view label, std::string_view line) {
  if (!line.starts_with(label)) return std::nullopt;
  return line.substr(label.size());
}

// Reads the lines of one block one after the other; stays empty-handed once one does not fit.
class BlockReader {
 public:
  BlockReader(const std::vector<std::string_view>& lines, std::size_t first)
      : lines_(lines), next_(first) {}

  std::optional<std::string_view> Line(std::string_view label) {
    if (next_ >= lines_.size()) return std::nullopt;
    return Behind(label, lines_[next_++]);
  }

 private:
  const std::vector<std::string_view>& lines_;
  std::size_t next_;
};

std::optional<CoefficientDump> BlockAt(const std::vector<std::string_view>& lines,
                                       std::size_t first) {
  BlockReader block(lines, first);
  CoefficientDump dump;
  const auto date = block.Line("Time: ");
  if (!date || !block.Line("Mass coefficients are in nsecs")) return std::nullopt;
  if (!block.Line("coefficient, coefficient value")) return std::nullopt;
  dump.date = *date;
  char name = 'A';
  for (double& coefficient : dump.coefficients) {
    const auto text = block.Line(std::string(1, name++) + ", ");
    const auto value = text ? ParseDouble(*text) : std::nullopt;
    if (!value) return std::nullopt;
    coefficient = *value;
  }
  const auto flags = block.Line("PolyTermsFlags = 0x");
  if (!flags || !block.Line("TradWeighting = 0x") || !block.Line("PolyWeighting = 0x")) {
    return std::nullopt;
  }
  const auto [end, error] =
      std::from_chars(flags->data(), flags->data() + flags->size(), dump.terms, 16);
  if (error != std::errc() || end != flags->data() + flags->size()) return std::nullopt;
  return dump;
}

// Of "20240229 13:05:09", enough to tell what follows at once; none for another text.
std::optional<long> SecondOfDay(std::string_view date) {
  if (date.size() != 17) return std::nullopt;
  const auto two = [date](std::size_t at) { return spectra::ParseInt32(date.substr(at, 2)); };
  const auto hour = two(9);
  const auto minute = two(12);
  const auto second = two(15);
  if (!hour || !minute || !second) return std::nullopt;
  return *hour * 3600L + *minute * 60L + *second;
}

bool FollowsAtOnce(const CoefficientDump& dump, const CoefficientDump& before) {
  constexpr long kSecondsOfADay = 86'400;
  const auto from = SecondOfDay(before.date);
  const auto to = SecondOfDay(dump.date);
  if (!from || !to) return false;
  const bool same_day = before.date.substr(0, 8) == dump.date.substr(0, 8);
  const long seconds = *to - *from + (same_day ? 0 : kSecondsOfADay);
  return seconds >= 0 && seconds <= kLongestFitSeconds;
}

}  // namespace

std::vector<CoefficientDump> ParseCalibrationLog(std::string_view text, const std::string& source) {
  if (!text.starts_with(kHeader) || text.starts_with(kOtherHeader)) {
    throw InputError({source, 1, 1}, spectra::Quoted(text.substr(0, text.find_first_of("\r\n"))),
                     "the first line of a calibration log, \"" + std::string(kHeader) + "...\"");
  }
  const std::vector<std::string_view> lines = LinesOf(text);
  std::vector<CoefficientDump> dumps;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (const auto dump = BlockAt(lines, i)) dumps.push_back(*dump);
  }
  return dumps;
}

std::vector<CoefficientDump> ReadCalibrationLog(const std::filesystem::path& path) {
  return ParseCalibrationLog(spectra::ReadWholeFile(path), path.string());
}

std::vector<CoefficientDump> FitResults(const std::vector<CoefficientDump>& dumps) {
  std::vector<CoefficientDump> results;
  for (std::size_t i = 2; i < dumps.size(); ++i) {
    const CoefficientDump& start = dumps[i - 2];
    const CoefficientDump& before = dumps[i - 1];
    const CoefficientDump& dump = dumps[i];
    if (start.coefficients != before.coefficients) continue;
    if (dump.coefficients == before.coefficients || !FollowsAtOnce(dump, before)) continue;
    results.push_back(dump);
  }
  return results;
}

}  // namespace tof::apply
