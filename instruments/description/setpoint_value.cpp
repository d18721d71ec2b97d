#include "instruments/description/setpoint_value.h"

#include <cstdint>
#include <limits>

#include "instruments/spectra/input_file.h"

namespace tof::description {
namespace {

std::optional<Variant> ParseInt16(std::string_view text) {
  const std::optional<std::int32_t> value = spectra::ParseInt32(text);
  if (!value || *value < std::numeric_limits<std::int16_t>::min() ||
      *value > std::numeric_limits<std::int16_t>::max()) {
    return std::nullopt;
  }
  return Variant(static_cast<std::int16_t>(*value));
}

template <typename Number>
std::optional<Variant> AsVariant(const std::optional<Number>& value) {
  return value ? std::optional<Variant>(Variant(*value)) : std::nullopt;
}

}  // namespace

std::optional<ValueType> ParseValueType(std::string_view text) {
  if (text == "int16") return ValueType::kInt16;
  if (text == "int32") return ValueType::kInt32;
  if (text == "double") return ValueType::kDouble;
  if (text == "boolean") return ValueType::kBoolean;
  return std::nullopt;
}

std::optional<Variant> ParseSetpointValue(ValueType type, std::string_view text) {
  switch (type) {
    case ValueType::kInt16:
      return ParseInt16(text);
    case ValueType::kInt32:
      return AsVariant(spectra::ParseInt32(text));
    case ValueType::kDouble:
      return AsVariant(spectra::ParseDouble(text));
    case ValueType::kBoolean:
      if (text == "true") return Variant(true);
      if (text == "false") return Variant(false);
      return std::nullopt;
  }
  return std::nullopt;
}

const char* ExpectedValue(ValueType type) {
  switch (type) {
    case ValueType::kInt16:
      return "a whole number of 16 bits";
    case ValueType::kInt32:
      return "a whole number of 32 bits";
    case ValueType::kDouble:
      return "a number";
    case ValueType::kBoolean:
      return "true or false";
  }
  return "a value";
}

}  // namespace tof::description
