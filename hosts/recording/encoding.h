// Values as they stand in a recording, and back: exactly, bit for bit.
//
// Doubles and singles are JSON numbers with a decimal point or an exponent; what JSON has no number
// for is a text: "NaN", "Infinity", "-Infinity", and "NaN:FFF8000000000000" for a NaN of other
// bits. Texts are JSON texts; one that is not UTF-8 is {"bytes": "<hexadecimal>"}. An array with
// bounds is {"lower": 0, "values": [...]}, and null when it was never dimensioned. Peaks and
// coefficients are arrays of eight numbers. A variant is null (Empty), true, false, a number with a
// point (double), a number without (32-bit integer), a text, or an object of one key that names its
// type: {"int16": 5}, {"double": "NaN"}, {"missing": true}, {"doubles": ...}, {"array": ...},
// {"object": true}.
#pragma once

#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "component/automation/error.h"
#include "component/automation/number_text.h"
#include "component/automation/variant.h"
#include "component/calibrator/collaborators.h"

namespace tof::recording {

// Keys stay in the order in which they are written.
using Json = nlohmann::ordered_json;

// An object by the number of the call that gave it; 0 is none.
struct ObjectNumber {
  std::int64_t value = 0;
  friend bool operator==(ObjectNumber, ObjectNumber) = default;
};

Json Encoded(bool value);
Json Encoded(std::int16_t value);
Json Encoded(std::int32_t value);
Json Encoded(std::uint32_t value);
Json Encoded(float value);
Json Encoded(double value);
Json Encoded(std::string_view value);
Json Encoded(const std::string& value);
Json Encoded(ObjectNumber value);  // null for none
Json Encoded(ValueType value);
Json Encoded(PeakCalculationtype value);
Json Encoded(const Variant& value);
Json Encoded(const std::vector<Variant>& values);
Json Encoded(const std::array<Variant, 6>& values);
Json Encoded(const BoundedArray<double>& array);
Json Encoded(const BoundedArray2D<double>& array);
Json Encoded(const PeakAttribs& peak);
Json Encoded(const PeakAttribsTable& table);
Json Encoded(const PeakRecord& record);
Json Encoded(const CoefficientRecord& record);
Json Encoded(const CalInfo& info);
Json Encoded(const ColumnStatistics& statistics);
Json Encoded(const DateTime& moment);
Json Encoded(const AutomationError& error);

template <class... Values>
Json Arguments(const Values&... values) {
  Json arguments = Json::array();
  (arguments.push_back(Encoded(values)), ...);
  return arguments;
}

// A value that is not what it should be; the text says what was found and what was expected.
class MalformedValue : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The value of that type. Raises a MalformedValue.
template <class T>
T Decoded(const Json& json);

template <>
bool Decoded(const Json& json);
template <>
std::int16_t Decoded(const Json& json);
template <>
std::int32_t Decoded(const Json& json);
template <>
std::uint32_t Decoded(const Json& json);
template <>
double Decoded(const Json& json);
template <>
float Decoded(const Json& json);
template <>
std::string Decoded(const Json& json);
template <>
ObjectNumber Decoded(const Json& json);
template <>
Variant Decoded(const Json& json);
template <>
BoundedArray<double> Decoded(const Json& json);
template <>
BoundedArray2D<double> Decoded(const Json& json);
template <>
PeakAttribs Decoded(const Json& json);
template <>
PeakAttribsTable Decoded(const Json& json);
template <>
PeakRecord Decoded(const Json& json);
template <>
CoefficientRecord Decoded(const Json& json);
template <>
CalInfo Decoded(const Json& json);
template <>
ColumnStatistics Decoded(const Json& json);
template <>
DateTime Decoded(const Json& json);
template <>
AutomationError Decoded(const Json& json);

// Of an object. Raises a MalformedValue when it is not there.
const Json& Member(const Json& json, const char* key);
template <class T>
T DecodedMember(const Json& json, const char* key) {
  return Decoded<T>(Member(json, key));
}

}  // namespace tof::recording
