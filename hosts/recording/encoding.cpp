#include "hosts/recording/encoding.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace tof::recording {
namespace {

constexpr std::string_view kNan = "NaN";
constexpr std::string_view kInfinity = "Infinity";
constexpr std::string_view kMinusInfinity = "-Infinity";
constexpr std::string_view kNanOfBits = "NaN:";
constexpr std::size_t kLongestExcerpt = 60;

[[noreturn]] void Fail(const Json& found, const std::string& expected) {
  std::string text = found.dump(-1, ' ', true, Json::error_handler_t::replace);
  if (text.size() > kLongestExcerpt) text = text.substr(0, kLongestExcerpt) + "...";
  throw MalformedValue("found " + text + ", expected " + expected);
}

std::string HexOf(std::uint64_t bits, int digits) {
  std::string text;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    text += "0123456789ABCDEF"[(bits >> shift) & 0xFU];
  }
  return text;
}

template <class Bytes>
std::string HexOfBytes(const Bytes& bytes) {
  std::string text;
  for (const auto byte : bytes) text += HexOf(static_cast<unsigned char>(byte), 2);
  return text;
}

// None of the whole text when it is not hexadecimal.
bool ParseHex(std::string_view text, std::uint64_t& bits) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, bits, 16);
  return error == std::errc() && stop == end;
}

std::vector<unsigned char> BytesOfHex(const Json& json) {
  if (!json.is_string()) Fail(json, "bytes in hexadecimal");
  const std::string_view text = json.get_ref<const std::string&>();
  if (text.size() % 2 != 0) Fail(json, "bytes in hexadecimal");
  std::vector<unsigned char> bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    std::uint64_t byte = 0;
    if (!ParseHex(text.substr(i, 2), byte)) Fail(json, "bytes in hexadecimal");
    bytes.push_back(static_cast<unsigned char>(byte));
  }
  return bytes;
}

bool IsUtf8(const std::string& text) {
  const bool ascii = std::all_of(text.begin(), text.end(), [](char c) { return c >= 0; });
  if (ascii) return true;
  try {
    static_cast<void>(Json(text).dump());
    return true;
  } catch (const Json::exception&) {
    return false;
  }
}

std::string TextOfNonFinite(double value) {
  if (std::isinf(value)) return std::string(value > 0 ? kInfinity : kMinusInfinity);
  const auto bits = std::bit_cast<std::uint64_t>(value);
  if (bits == std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN())) {
    return std::string(kNan);
  }
  return std::string(kNanOfBits) + HexOf(bits, 16);
}

double NonFinite(const Json& json) {
  const std::string_view text = json.get_ref<const std::string&>();
  if (text == kNan) return std::numeric_limits<double>::quiet_NaN();
  if (text == kInfinity) return std::numeric_limits<double>::infinity();
  if (text == kMinusInfinity) return -std::numeric_limits<double>::infinity();
  std::uint64_t bits = 0;
  if (text.substr(0, kNanOfBits.size()) == kNanOfBits &&
      ParseHex(text.substr(kNanOfBits.size()), bits)) {
    return std::bit_cast<double>(bits);
  }
  Fail(json, "a number, NaN or an infinity");
}

template <class Whole>
Whole WholeNumber(const Json& json) {
  const std::string expected = "a whole number of " + std::to_string(8 * sizeof(Whole)) + " bits";
  if (!json.is_number_integer()) Fail(json, expected);
  const bool too_large =
      json.is_number_unsigned() &&
      json.get<std::uint64_t>() > std::uint64_t{std::numeric_limits<Whole>::max()};
  if (too_large) Fail(json, expected);
  const auto value = json.get<std::int64_t>();
  if (value < std::int64_t{std::numeric_limits<Whole>::min()}) Fail(json, expected);
  return static_cast<Whole>(value);
}

template <class Range>
Json EncodedAll(const Range& values) {
  Json all = Json::array();
  for (const auto& value : values) all.push_back(Encoded(value));
  return all;
}

const Json& ArrayOf(const Json& json) {
  if (!json.is_array()) Fail(json, "an array");
  return json;
}

template <class T>
std::vector<T> DecodedAll(const Json& json) {
  std::vector<T> values;
  for (const Json& value : ArrayOf(json)) values.push_back(Decoded<T>(value));
  return values;
}

template <class T, std::size_t n>
std::array<T, n> DecodedArray(const Json& json) {
  if (!json.is_array() || json.size() != n) Fail(json, std::to_string(n) + " values");
  std::array<T, n> values{};
  for (std::size_t i = 0; i < n; ++i) values[i] = Decoded<T>(json[i]);
  return values;
}

template <class T>
Json EncodedBounded(const BoundedArray<T>& array) {
  if (!array.IsDimensioned()) return {};
  return {{"lower", array.LBound()}, {"values", EncodedAll(array)}};
}

template <class T>
BoundedArray<T> DecodedBounded(const Json& json) {
  if (json.is_null()) return {};
  return BoundedArray<T>(DecodedAll<T>(Member(json, "values")),
                         DecodedMember<std::int32_t>(json, "lower"));
}

template <class T>
Json EncodedTable(const BoundedArray2D<T>& table) {
  if (!table.IsDimensioned()) return {};
  Json values = Json::array();
  for (std::int32_t i = table.LBound(1); i <= table.UBound(1); ++i) {
    for (std::int32_t j = table.LBound(2); j <= table.UBound(2); ++j) {
      values.push_back(Encoded(table(i, j)));
    }
  }
  return {{"lower", {table.LBound(1), table.LBound(2)}},
          {"upper", {table.UBound(1), table.UBound(2)}},
          {"values", std::move(values)}};
}

template <class T>
BoundedArray2D<T> DecodedTable(const Json& json) {
  if (json.is_null()) return {};
  const auto lower = DecodedArray<std::int32_t, 2>(Member(json, "lower"));
  const auto upper = DecodedArray<std::int32_t, 2>(Member(json, "upper"));
  const std::vector<T> values = DecodedAll<T>(Member(json, "values"));
  const auto rows = std::int64_t{upper[0]} - lower[0] + 1;
  const auto columns = std::int64_t{upper[1]} - lower[1] + 1;
  // The product of two extents of 32 bits may be too large, but not when each is at most the count.
  const auto count = static_cast<std::int64_t>(values.size());
  const bool fits = rows >= 0 && columns >= 0 && rows * (columns > 0 ? 1 : 0) <= count &&
                    columns * (rows > 0 ? 1 : 0) <= count && rows * columns == count;
  if (!fits) Fail(json, "as many values as the bounds say");
  BoundedArray2D<T> table({lower[0], upper[0]}, {lower[1], upper[1]}, IfEmpty::kIsAllowed);
  std::size_t next = 0;
  for (std::int64_t i = lower[0]; i <= upper[0]; ++i) {
    for (std::int64_t j = lower[1]; j <= upper[1]; ++j) {
      table(static_cast<std::int32_t>(i), static_cast<std::int32_t>(j)) = values[next++];
    }
  }
  return table;
}

struct VariantEncoder {
  Json operator()(std::monostate) const { return {}; }
  Json operator()(Variant::Missing) const { return {{"missing", true}}; }
  Json operator()(std::int16_t value) const { return {{"int16", value}}; }
  Json operator()(double value) const {
    if (std::isfinite(value)) return value;
    return {{"double", Encoded(value)}};
  }
  // What an object of another component is cannot be kept; none of its operations is used.
  Json operator()(const Variant::Object&) const { return {{"object", true}}; }
  Json operator()(const Variant::DoubleArray& value) const { return {{"doubles", Encoded(value)}}; }
  Json operator()(const Variant::Array& value) const { return {{"array", EncodedBounded(value)}}; }
  // A bool, a 32-bit integer or a text, or {"bytes": ...}.
  template <class Plain>
  Json operator()(const Plain& value) const {
    return Encoded(value);
  }
};

Variant TaggedVariant(const Json& json) {
  if (!json.is_object() || json.size() != 1) Fail(json, "a variant");
  const std::string& type = json.begin().key();
  const Json& value = json.begin().value();
  if (type == "missing") return Variant::Missing{};
  if (type == "int16") return Decoded<std::int16_t>(value);
  if (type == "double") return Decoded<double>(value);
  if (type == "bytes") return Decoded<std::string>(json);
  if (type == "object") return Variant::Object();
  if (type == "doubles") return DecodedBounded<double>(value);
  if (type == "array") return DecodedBounded<Variant>(value);
  Fail(json, "a variant");
}

}  // namespace

Json Encoded(bool value) {
  return value;
}
Json Encoded(std::int16_t value) {
  return value;
}
Json Encoded(std::int32_t value) {
  return value;
}
Json Encoded(std::uint32_t value) {
  return value;
}
Json Encoded(float value) {
  return Encoded(double{value});
}
Json Encoded(double value) {
  if (!std::isfinite(value)) return TextOfNonFinite(value);
  return value;
}
Json Encoded(std::string_view value) {
  return Encoded(std::string(value));
}
Json Encoded(const std::string& value) {
  if (!IsUtf8(value)) return {{"bytes", HexOfBytes(value)}};
  return value;
}
Json Encoded(ObjectNumber value) {
  if (value.value == 0) return {};
  return value.value;
}
Json Encoded(ValueType value) {
  return static_cast<std::int32_t>(value);
}
Json Encoded(PeakCalculationtype value) {
  return static_cast<std::int32_t>(value);
}
Json Encoded(const Variant& value) {
  return std::visit(VariantEncoder(), value.value());
}
Json Encoded(const std::vector<Variant>& values) {
  return EncodedAll(values);
}
Json Encoded(const std::array<Variant, 6>& values) {
  return EncodedAll(values);
}
Json Encoded(const BoundedArray<double>& array) {
  return EncodedBounded(array);
}
Json Encoded(const BoundedArray2D<double>& array) {
  return EncodedTable(array);
}
Json Encoded(const PeakAttribs& peak) {
  return Arguments(peak.unused0, peak.unused8, peak.unused16, peak.time, peak.attribute32,
                   peak.abundance, peak.attribute48, peak.unused56);
}
Json Encoded(const PeakAttribsTable& table) {
  return EncodedTable(table);
}
Json Encoded(const PeakRecord& record) {
  return Arguments(record.position, record.unused8, record.unused16, record.unused24,
                   record.unused32, record.height, record.unused48, record.unused56);
}
Json Encoded(const CoefficientRecord& record) {
  return EncodedAll(record);
}
Json Encoded(const CalInfo& info) {
  return {
      {"unused0", HexOfBytes(info.unused0)},   {"time_ns", Encoded(info.time_ns)},
      {"setpoint119", info.setpoint119},       {"PolyTermPowerUseFlag", info.PolyTermPowerUseFlag},
      {"PolyTermsFlags", info.PolyTermsFlags}, {"TradWeighting", info.TradWeighting},
      {"PolyWeighting", info.PolyWeighting},   {"unused36", HexOfBytes(info.unused36)}};
}
Json Encoded(const ColumnStatistics& statistics) {
  return {{"averages", Encoded(statistics.averages)},
          {"standard_deviations", Encoded(statistics.standard_deviations)}};
}
Json Encoded(const DateTime& moment) {
  return {moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second};
}
Json Encoded(const AutomationError& error) {
  return {{"number", error.number()},
          {"source", Encoded(error.source())},
          {"description", Encoded(error.description())}};
}

const Json& Member(const Json& json, const char* key) {
  if (!json.is_object() || !json.contains(key)) {
    Fail(json, "an object with \"" + std::string(key) + '"');
  }
  return json[key];
}

template <>
bool Decoded(const Json& json) {
  if (!json.is_boolean()) Fail(json, "true or false");
  return json.get<bool>();
}
template <>
std::int16_t Decoded(const Json& json) {
  return WholeNumber<std::int16_t>(json);
}
template <>
std::int32_t Decoded(const Json& json) {
  return WholeNumber<std::int32_t>(json);
}
template <>
std::uint32_t Decoded(const Json& json) {
  return WholeNumber<std::uint32_t>(json);
}
template <>
double Decoded(const Json& json) {
  if (json.is_string()) return NonFinite(json);
  if (!json.is_number()) Fail(json, "a number");
  return json.get<double>();
}
template <>
float Decoded(const Json& json) {
  return static_cast<float>(Decoded<double>(json));
}
template <>
std::string Decoded(const Json& json) {
  if (json.is_object()) {
    const std::vector<unsigned char> bytes = BytesOfHex(Member(json, "bytes"));
    return {bytes.begin(), bytes.end()};
  }
  if (!json.is_string()) Fail(json, "a text");
  return json.get<std::string>();
}
template <>
ObjectNumber Decoded(const Json& json) {
  if (json.is_null()) return {};
  const auto number = WholeNumber<std::int32_t>(json);
  if (number <= 0) Fail(json, "the number of a call, or null");
  return {number};
}
template <>
Variant Decoded(const Json& json) {
  if (json.is_null()) return {};
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_string()) return json.get<std::string>();
  if (json.is_number_integer()) return Decoded<std::int32_t>(json);
  if (json.is_number()) return json.get<double>();
  return TaggedVariant(json);
}
template <>
BoundedArray<double> Decoded(const Json& json) {
  return DecodedBounded<double>(json);
}
template <>
PeakAttribs Decoded(const Json& json) {
  const auto fields = DecodedArray<double, 8>(json);
  return {fields[0], fields[1], fields[2], fields[3], fields[4], fields[5], fields[6], fields[7]};
}
template <>
PeakAttribsTable Decoded(const Json& json) {
  return DecodedTable<PeakAttribs>(json);
}
template <>
BoundedArray2D<double> Decoded(const Json& json) {
  return DecodedTable<double>(json);
}
template <>
PeakRecord Decoded(const Json& json) {
  const auto fields = DecodedArray<double, 8>(json);
  return {fields[0], fields[1], fields[2], fields[3], fields[4], fields[5], fields[6], fields[7]};
}
template <>
CoefficientRecord Decoded(const Json& json) {
  return DecodedArray<double, 8>(json);
}
template <>
CalInfo Decoded(const Json& json) {
  CalInfo info;
  const auto copy_bytes = [&json](const char* key, auto& to) {
    const std::vector<unsigned char> from = BytesOfHex(Member(json, key));
    if (from.size() != to.size()) Fail(json, std::to_string(to.size()) + " bytes of " + key);
    std::transform(from.begin(), from.end(), to.begin(),
                   [](unsigned char c) { return std::byte{c}; });
  };
  copy_bytes("unused0", info.unused0);
  info.time_ns = DecodedMember<double>(json, "time_ns");
  info.setpoint119 = DecodedMember<std::int32_t>(json, "setpoint119");
  info.PolyTermPowerUseFlag = DecodedMember<std::int32_t>(json, "PolyTermPowerUseFlag");
  info.PolyTermsFlags = DecodedMember<std::int32_t>(json, "PolyTermsFlags");
  info.TradWeighting = DecodedMember<std::int32_t>(json, "TradWeighting");
  info.PolyWeighting = DecodedMember<std::int32_t>(json, "PolyWeighting");
  copy_bytes("unused36", info.unused36);
  return info;
}
template <>
ColumnStatistics Decoded(const Json& json) {
  return {DecodedMember<BoundedArray<double>>(json, "averages"),
          DecodedMember<BoundedArray<double>>(json, "standard_deviations")};
}
template <>
DateTime Decoded(const Json& json) {
  const auto fields = DecodedArray<std::int32_t, 6>(json);
  return {fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]};
}
template <>
AutomationError Decoded(const Json& json) {
  return {DecodedMember<std::int32_t>(json, "number"),
          DecodedMember<std::string>(json, "description"),
          DecodedMember<std::string>(json, "source")};
}

}  // namespace tof::recording
