#include "hosts/recording/line_seal.h"

#include <fmt/format.h>
#include <zlib.h>

#include <charconv>

namespace tof::recording {
namespace {

constexpr std::string_view kOpening = ",\"crc\":\"";
constexpr std::string_view kClosing = "\"}";
constexpr std::size_t kDigits = 8;
constexpr std::size_t kSealLength = kOpening.size() + kDigits + kClosing.size();

}  // namespace

std::uint32_t Continued(std::uint32_t before, std::string_view text) {
  uLong sum = before;
  // zlib counts in 32 bits.
  constexpr std::size_t kMost = 1U << 30U;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, kMost);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): what zlib takes
    sum = crc32(sum, reinterpret_cast<const Bytef*>(part.data()), static_cast<uInt>(part.size()));
    text.remove_prefix(part.size());
  }
  return static_cast<std::uint32_t>(sum);
}

std::string SealOf(std::uint32_t sum) {
  return fmt::format("{}{:08x}{}", kOpening, sum, kClosing);
}

std::optional<SealedLine> Unsealed(std::string_view line) {
  if (line.size() < kSealLength) return std::nullopt;
  const std::string_view seal = line.substr(line.size() - kSealLength);
  SealedLine result{line.substr(0, line.size() - kSealLength), 0};
  const char* const digits = seal.data() + kOpening.size();
  const auto [stop, error] = std::from_chars(digits, digits + kDigits, result.sum, 16);
  const bool is_seal =
      error == std::errc() && stop == digits + kDigits && seal == SealOf(result.sum);
  if (!is_seal) return std::nullopt;
  return result;
}

}  // namespace tof::recording
