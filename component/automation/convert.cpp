#include "component/automation/convert.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "component/automation/number_text.h"

namespace tof {
namespace {

// Nearest whole number, halves to even, whatever rounding mode the host has set.
double RoundHalfEven(double value) {
  const double below = std::floor(value);
  const double fraction = value - below;
  if (fraction != 0.5) return fraction < 0.5 ? below : below + 1.0;
  return std::fmod(below, 2.0) == 0.0 ? below : below + 1.0;
}

template <class Integer>
Integer ToInteger(double value) {
  if (!std::isfinite(value)) Raise(RunTimeError::kOverflow);
  const double rounded = RoundHalfEven(value);
  if (rounded < double{std::numeric_limits<Integer>::min()} ||
      rounded > double{std::numeric_limits<Integer>::max()}) {
    Raise(RunTimeError::kOverflow);
  }
  return static_cast<Integer>(rounded);
}

std::string_view TrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower_case) {
  if (text.size() != lower_case.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (Lower(text[i]) != lower_case[i]) return false;
  }
  return true;
}

// Whether a number that no double holds is too small rather than too large: the sign of the power
// of ten of its first digit that is not 0, which no such number has near 0.
bool IsTooSmall(std::string_view number) {
  const auto e = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, e);
  const auto point = std::min(mantissa.find('.'), mantissa.size());
  const auto first_digit = mantissa.find_first_of("123456789");
  const std::int64_t power =
      static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first_digit);
  if (e == number.size()) return power < 0;
  std::string_view exponent_text = number.substr(e + 1);
  if (exponent_text.front() == '+') exponent_text.remove_prefix(1);
  std::int64_t exponent = 0;
  const auto [end, error] =
      std::from_chars(exponent_text.data(), exponent_text.data() + exponent_text.size(), exponent);
  // An exponent of 20 digits outweighs any mantissa.
  if (error == std::errc::result_out_of_range) return exponent_text.front() == '-';
  return power + exponent < 0;
}

double MassElement(const Variant& element) {
  if (element.IsEmpty()) Raise(RunTimeError::kTypeMismatch);
  return ToDouble(element);
}

template <class T, class Convert>
BoundedArray<double> Rebased(const BoundedArray<T>& source, Convert convert) {
  if (source.size() > static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max())) {
    Raise(RunTimeError::kOverflow);
  }
  const auto upper = static_cast<std::int32_t>(source.size()) - 1;
  BoundedArray<double> masses(0, upper, IfEmpty::kIsAllowed);
  auto to = masses.begin();
  for (const T& element : source) *to++ = convert(element);
  return masses;
}

}  // namespace

std::int16_t ToInt16(double value) {
  return ToInteger<std::int16_t>(value);
}
std::int32_t ToInt32(double value) {
  return ToInteger<std::int32_t>(value);
}

float ToSingle(double value) {
  if (std::isfinite(value) && std::fabs(value) > double{std::numeric_limits<float>::max()}) {
    Raise(RunTimeError::kOverflow);
  }
  return static_cast<float>(value);
}

double ToDouble(const Variant& value) {
  if (const auto* number = value.As<double>()) return *number;
  if (const auto* number = value.As<std::int32_t>()) return *number;
  if (const auto* number = value.As<std::int16_t>()) return *number;
  if (const auto* flag = value.As<bool>()) return *flag ? -1.0 : 0.0;
  if (const auto* text = value.As<std::string>()) return TextToDouble(*text);
  if (value.IsEmpty()) return 0.0;
  Raise(RunTimeError::kTypeMismatch);
}

std::int16_t ToInt16(const Variant& value) {
  return ToInt16(ToDouble(value));
}
std::int32_t ToInt32(const Variant& value) {
  return ToInt32(ToDouble(value));
}

bool ToBool(const Variant& value) {
  if (const auto* text = value.As<std::string>()) {
    const std::string_view trimmed = TrimBlanks(*text);
    if (EqualsIgnoringCase(trimmed, "true")) return true;
    if (EqualsIgnoringCase(trimmed, "false")) return false;
  }
  return ToDouble(value) != 0.0;
}

double TextToDouble(std::string_view text) {
  std::string_view digits = TrimBlanks(text);
  if (EqualsIgnoringCase(digits, "nan")) return std::numeric_limits<double>::quiet_NaN();
  bool negative = false;
  if (!digits.empty() && (digits.front() == '+' || digits.front() == '-')) {
    negative = digits.front() == '-';
    digits.remove_prefix(1);
  }
  if (EqualsIgnoringCase(digits, "infinity")) {
    const double infinity = std::numeric_limits<double>::infinity();
    return negative ? -infinity : infinity;
  }
  // from_chars would also read "inf" and a second sign; a number begins with a digit or a point.
  if (digits.empty() ||
      !(digits.front() == '.' || (digits.front() >= '0' && digits.front() <= '9'))) {
    Raise(RunTimeError::kTypeMismatch);
  }
  double value = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::invalid_argument || end != digits.data() + digits.size()) {
    Raise(RunTimeError::kTypeMismatch);
  }
  if (error == std::errc::result_out_of_range) {
    if (!IsTooSmall(digits)) Raise(RunTimeError::kOverflow);
    value = 0.0;
  }
  return negative ? -value : value;
}

std::string ToText(const Variant& value) {
  if (value.IsEmpty()) return {};
  if (const auto* text = value.As<std::string>()) return *text;
  if (const auto* flag = value.As<bool>()) return BooleanText(*flag);
  if (const auto* number = value.As<std::int32_t>()) return std::to_string(*number);
  if (const auto* number = value.As<std::int16_t>()) return std::to_string(*number);
  if (const auto* number = value.As<double>()) return NumberText(*number);
  Raise(RunTimeError::kTypeMismatch);
}

bool EqualsNumber(const Variant& value, double number) {
  return ToDouble(value) == number;
}

bool EqualsTrue(const Variant& value) {
  if (const auto* text = value.As<std::string>()) {
    if (EqualsIgnoringCase(TrimBlanks(*text), "true")) return true;
    if (EqualsIgnoringCase(TrimBlanks(*text), "false")) return false;
  }
  return ToDouble(value) == -1.0;
}

const BoundedArray<double>& AsDoubleArray(const Variant& value) {
  const auto* array = value.As<Variant::DoubleArray>();
  if (array == nullptr) Raise(RunTimeError::kTypeMismatch);
  return *array;
}

BoundedArray<double> MassesFromCaller(const Variant& masses) {
  if (const auto* doubles = masses.As<Variant::DoubleArray>()) {
    return Rebased(*doubles, [](double mass) { return mass; });
  }
  if (const auto* variants = masses.As<Variant::Array>()) return Rebased(*variants, MassElement);
  Raise(RunTimeError::kTypeMismatch);
}

}  // namespace tof
