#include "instruments/spectra/input_file.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <system_error>

#include "instruments/spectra/input_error.h"

namespace tof::spectra {
namespace {

std::string_view WithoutPlus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

template <typename Number>
std::optional<Number> ParseWhole(std::string_view text) {
  text = WithoutPlus(text);
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

}  // namespace

std::ifstream OpenForReading(const std::filesystem::path& path) {
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  std::error_code no_status;
  if (in && std::filesystem::is_directory(path, no_status)) {
    throw InputError({path.string()}, "a folder", "a readable file");
  }
  if (in) return in;
  throw InputError({path.string()}, std::generic_category().message(errno), "a readable file");
}

std::string ReadWholeFile(const std::filesystem::path& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) throw InputError({path.string()}, error.message(), "a readable file");
  std::ifstream in = OpenForReading(path);
  std::string text(static_cast<std::size_t>(size), '\0');
  in.read(text.data(), static_cast<std::streamsize>(size));
  if (static_cast<std::uintmax_t>(in.gcount()) != size) {
    throw InputError({path.string()}, "only " + std::to_string(in.gcount()) + " readable bytes",
                     std::to_string(size) + " bytes");
  }
  return text;
}

std::optional<double> ParseDouble(std::string_view text) {
  const std::optional<double> value = ParseWhole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::int32_t> ParseInt32(std::string_view text) {
  return ParseWhole<std::int32_t>(text);
}

}  // namespace tof::spectra
