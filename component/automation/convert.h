// Checked conversions between the automation types.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "component/automation/variant.h"

namespace tof {

// Nearest whole number, halves to the even neighbour. NaN, infinite or out of range: error 6.
std::int16_t ToInt16(double value);
std::int32_t ToInt32(double value);

// The nearest single-precision number; NaN and infinite stay so. A finite number beyond the
// singles: error 6.
float ToSingle(double value);

// Numbers as they are; Empty is 0, True is -1; text is read with TextToDouble. Anything else
// (missing, arrays, objects): error 13.
double ToDouble(const Variant& value);
std::int16_t ToInt16(const Variant& value);
std::int32_t ToInt32(const Variant& value);

// A number is True unless 0; "True" and "False" in any case, and numeric text; else error 13.
bool ToBool(const Variant& value);

// A decimal number with optional sign, fraction and exponent, blanks around it allowed, or what
// NumberText writes for the others: "NaN", "Infinity", "-Infinity". The decimal separator is always
// a point. Anything else, empty text included: error 13. A magnitude beyond the doubles is error 6,
// one too small for them 0.
double TextToDouble(std::string_view text);

// "True" or "False"; numbers as in number_text.h; Empty is the empty text. Missing, arrays and
// objects: error 13.
std::string ToText(const Variant& value);

// Whether a variant equals a number: text is converted first (error 13 when it is not numeric),
// True counts as -1 and Empty as 0.
bool EqualsNumber(const Variant& value, double number);

// Whether a variant equals True: True itself, -1, or the text "True".
bool EqualsTrue(const Variant& value);

// The array of doubles that a variant holds; error 13 for anything else, Empty included.
const BoundedArray<double>& AsDoubleArray(const Variant& value);

// The one-dimensional mass array that a caller passed, any lower bound, as doubles indexed from 0.
// Elements may be doubles, integers, booleans, numeric text or variants of these; anything else, or
// no array, is error 13. More elements than a 16-bit counter can count (32,767) is error 6. An
// array without elements is returned as one.
BoundedArray<double> MassesFromCaller(const Variant& masses);

}  // namespace tof
