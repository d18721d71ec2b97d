#include "component/automation/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace tof {
namespace {

constexpr int kSignificantDigits = 15;

// A finite, non-zero magnitude as 0.d1d2d3... x 10^(exponent + 1), 15 digits, trailing zeros kept.
struct Decimal {
  std::string digits;
  int exponent = 0;  // of the first digit
};

Decimal DecimalOf(double magnitude) {
  std::array<char, 40> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude,
                                          std::chars_format::scientific, kSignificantDigits - 1);
  (void)error;  // the buffer holds every double in this form
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const auto e = text.find('e');
  Decimal decimal;
  decimal.digits = std::string(text.substr(0, 1)) + std::string(text.substr(2, e - 2));
  const bool negative = text[e + 1] == '-';
  std::from_chars(text.data() + e + 2, text.data() + text.size(), decimal.exponent);
  if (negative) decimal.exponent = -decimal.exponent;
  return decimal;
}

std::string ExponentText(int exponent) {
  const std::string digits = std::to_string(std::abs(exponent));
  return std::string(exponent < 0 ? "E-" : "E+") + (digits.size() < 2 ? "0" : "") + digits;
}

std::string NonFiniteText(double value) {
  if (std::isnan(value)) return "NaN";
  return value < 0.0 ? "-Infinity" : "Infinity";
}

// Adds one to the last digit; a carry out of the first digit makes it 1 and raises the exponent.
void RoundUp(Decimal& decimal) {
  for (auto digit = decimal.digits.rbegin(); digit != decimal.digits.rend(); ++digit) {
    if (*digit != '9') {
      ++*digit;
      return;
    }
    *digit = '0';
  }
  decimal.digits.insert(decimal.digits.begin(), '1');
  decimal.digits.pop_back();
  ++decimal.exponent;
}

std::string Padded(int value, std::size_t width) {
  std::string digits = std::to_string(value);
  return digits.size() >= width ? digits : std::string(width - digits.size(), '0') + digits;
}

}  // namespace

std::string NumberText(double value) {
  if (!std::isfinite(value)) return NonFiniteText(value);
  if (value == 0.0) return "0";
  Decimal decimal = DecimalOf(std::fabs(value));
  decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
  const std::string sign = value < 0.0 ? "-" : "";
  const int exponent = decimal.exponent;
  const int count = static_cast<int>(decimal.digits.size());
  if (exponent < -4 || exponent >= kSignificantDigits) {
    std::string mantissa = decimal.digits.substr(0, 1);
    if (count > 1) mantissa += "." + decimal.digits.substr(1);
    return sign + mantissa + ExponentText(exponent);
  }
  if (exponent < 0) {
    return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + decimal.digits;
  }
  const int whole = exponent + 1;
  if (count <= whole) {
    return sign + decimal.digits + std::string(static_cast<std::size_t>(whole - count), '0');
  }
  const auto point = static_cast<std::size_t>(whole);
  return sign + decimal.digits.substr(0, point) + "." + decimal.digits.substr(point);
}

std::string BooleanText(bool value) {
  return value ? "True" : "False";
}

std::string ScientificText(double value) {
  constexpr std::size_t kDigits = 11;
  if (!std::isfinite(value)) return NonFiniteText(value);
  if (value == 0.0) return "0.0000000000E+00";
  // Halves are those of the 15 digits a double is trusted for, so that 1.00000000005 counts as one
  // although the nearest double lies below it.
  Decimal decimal = DecimalOf(std::fabs(value));
  const bool up = decimal.digits[kDigits] >= '5';
  decimal.digits.resize(kDigits);
  if (up) RoundUp(decimal);
  return std::string(value < 0.0 ? "-" : "") + decimal.digits.substr(0, 1) + "." +
         decimal.digits.substr(1) + ExponentText(decimal.exponent);
}

std::string WholeNumberText(double value) {
  if (!std::isfinite(value)) return NonFiniteText(value);
  const double rounded = std::round(value);
  if (rounded == 0.0) return {};
  std::array<char, 320> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), rounded,
                                          std::chars_format::fixed, 0);
  (void)error;  // the buffer holds every double in this form
  return {buffer.data(), end};
}

std::string HexText(std::int32_t value) {
  std::array<char, 8> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                          static_cast<std::uint32_t>(value), 16);
  (void)error;  // eight digits hold every 32-bit pattern
  for (char* c = buffer.data(); c != end; ++c) {
    if (*c >= 'a') *c = static_cast<char>(*c - 'a' + 'A');
  }
  return {buffer.data(), end};
}

std::string DateText(const DateTime& moment) {
  return Padded(moment.year, 4) + Padded(moment.month, 2) + Padded(moment.day, 2);
}

std::string TimeText(const DateTime& moment) {
  return Padded(moment.hour, 2) + Padded(moment.minute, 2) + Padded(moment.second, 2);
}

std::string ColonTimeText(const DateTime& moment) {
  return Padded(moment.hour, 2) + ":" + Padded(moment.minute, 2) + ":" + Padded(moment.second, 2);
}

}  // namespace tof
