#include "hosts/apply/calibration_log.h"

#include <optional>
#include <sstream>

#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::apply {
namespace {

using spectra::InputError;

constexpr std::string_view kHeader = "===CALIBRATION ";
constexpr std::string_view kOtherHeader = "===CALIBRATION DATA ";
constexpr long kLongestFitSeconds = 60;

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
  const auto from = SecondOfDay(before.time);
  const auto to = SecondOfDay(dump.time);
  if (!from || !to) return false;
  const bool same_day = before.time.substr(0, 8) == dump.time.substr(0, 8);
  const long seconds = *to - *from + (same_day ? 0 : kSecondsOfADay);
  return seconds >= 0 && seconds <= kLongestFitSeconds;
}

}  // namespace

std::vector<CoefficientDump> ParseCalibrationLog(std::string_view text, const std::string& source) {
  if (!text.starts_with(kHeader) || text.starts_with(kOtherHeader)) {
    throw InputError({source, 1, 1}, spectra::Quoted(text.substr(0, text.find_first_of("\r\n"))),
                     "the first line of a calibration log, \"" + std::string(kHeader) + "...\"");
  }
  std::istringstream bytes{std::string(text)};
  std::vector<report::Problem> left_out;  // blocks that are not whole
  std::vector<CoefficientDump> dumps;
  for (const auto& part : report::ReadCalibrationLog({bytes, source}, left_out)) {
    dumps.insert(dumps.end(), part.dumps.begin(), part.dumps.end());
  }
  return dumps;
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
