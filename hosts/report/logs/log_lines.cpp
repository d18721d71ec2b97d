#include "hosts/report/logs/log_lines.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace tof::report {
namespace {

constexpr std::size_t kMostComplaints = 12;
constexpr std::size_t kMostShownBytes = 60;

std::string_view WithoutBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

Complaints::~Complaints() {
  if (count_ <= kMostComplaints) return;
  problems_.push_back({file_, 0, fmt::format("{} more such lines", count_ - kMostComplaints)});
}

void Complaints::Add(std::size_t line, std::string what) {
  if (++count_ > kMostComplaints) return;
  problems_.push_back({file_, line, std::move(what)});
}

void Complaints::Unexpected(std::size_t line, std::string_view found, std::string_view expected) {
  const std::string shown = found.size() <= kMostShownBytes
                                ? std::string(found)
                                : std::string(found.substr(0, kMostShownBytes)) + "...";
  Add(line, fmt::format("found \"{}\", expected {}", shown, expected));
}

bool LogLines::Next() {
  if (!std::getline(bytes_, text_)) {
    if (bytes_.bad()) complaints_.Add(number_, "cannot be read any further");
    return false;
  }
  ++number_;
  if (bytes_.eof()) {
    complaints_.Add(number_, "ends in the middle of a line, which is not used");
    return false;
  }
  if (!text_.empty() && text_.back() == '\r') text_.pop_back();
  return true;
}

std::optional<double> LoggedNumber(std::string_view text) {
  text = WithoutBlanks(text);
  if (text == "NaN") return std::numeric_limits<double>::quiet_NaN();
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<std::vector<double>> LoggedNumbers(std::string_view text) {
  std::vector<double> numbers;
  while (true) {
    const std::size_t comma = text.find(',');
    const std::optional<double> number = LoggedNumber(text.substr(0, comma));
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    if (comma == std::string_view::npos) return numbers;
    text.remove_prefix(comma + 1);
  }
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

std::optional<std::string_view> Between(std::string_view text, std::string_view start,
                                        std::string_view end) {
  if (text.size() < start.size() + end.size() || !StartsWith(text, start)) return std::nullopt;
  if (text.substr(text.size() - end.size()) != end) return std::nullopt;
  return text.substr(start.size(), text.size() - start.size() - end.size());
}

}  // namespace tof::report
