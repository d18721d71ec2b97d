// Numbers, booleans, dates and times as the traces and logs show them. Pure functions that no
// locale changes.
#pragma once

#include <cstdint>
#include <string>

namespace tof {

// Up to 15 significant digits, shortest: fixed notation for 1E-04 <= |x| < 1E15, else like
// "1.5E-07"; "0" for both zeros; "NaN"; "Infinity" and "-Infinity".
std::string NumberText(double value);

// "True" or "False".
std::string BooleanText(bool value);

// The pattern "0.0000000000E+00", as in -1.5000000000E-07, halves of the decimal form away from
// zero. NaN and infinities as in NumberText.
std::string ScientificText(double value);

// The patterns "###" and "########": the value rounded to a whole number, halves away from zero,
// all its digits, and nothing at all when the rounded value is 0.
std::string WholeNumberText(double value);

// Upper-case hexadecimal of the 32-bit pattern, no leading zeros ("0" for 0).
std::string HexText(std::int32_t value);

// A moment in the host's local time.
struct DateTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
  friend bool operator==(const DateTime&, const DateTime&) = default;
};

std::string DateText(const DateTime& moment);       // "YYYYMMDD"
std::string TimeText(const DateTime& moment);       // "HHmmss"
std::string ColonTimeText(const DateTime& moment);  // "hh:mm:ss", 24 hours

}  // namespace tof
