#include "instruments/spectra/input_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tof::spectra {
namespace {

constexpr std::size_t kLongestQuote = 40;

std::string Message(const InputPlace& place, const std::string& found,
                    const std::string& expected) {
  if (place.line == 0)
    return fmt::format("{}: found {}, expected {}", place.source, found, expected);
  return fmt::format("{}:{}:{}: found {}, expected {}", place.source, place.line, place.column,
                     found, expected);
}

}  // namespace

InputError::InputError(InputPlace place, std::string found, std::string expected)
    : std::runtime_error(Message(place, found, expected)),
      place_(std::move(place)),
      found_(std::move(found)),
      expected_(std::move(expected)) {}

std::string Quoted(std::string_view text) {
  std::string quoted(text.substr(0, kLongestQuote));
  std::replace_if(
      quoted.begin(), quoted.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }, '?');
  return '"' + quoted + (text.size() > kLongestQuote ? "...\"" : "\"");
}

InputPlace PlaceOfOffset(std::string source, std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto newlines = std::count(before.begin(), before.end(), '\n');
  const std::size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0: the first line
  return {std::move(source), static_cast<std::size_t>(newlines) + 1,
          before.size() - line_start + 1};
}

}  // namespace tof::spectra
