// Pieces of HTML.
#pragma once

#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>

namespace tof::report {

// `text` as the content of an element or of an attribute in quotes. Bytes that are not UTF-8, which
// file names may hold, become U+FFFD.
std::string Escape(std::string_view text);

// JSON as the content of a script element: no character of it can end the element.
std::string EscapeForScript(std::string_view json);

// A number for people, with the exact value for programs; a dash for one that is absent or not
// finite. `digits` behind the point.
std::string Number(std::optional<double> value, int digits);
// The same, a plus sign included: for errors.
std::string SignedNumber(std::optional<double> value, int digits);
// All digits of the double.
std::string ExactNumber(std::optional<double> value);

// The cells of a table's row. `key` names the figure as the JSON result does.
std::string NumberCell(const std::string& key, std::optional<double> value, int digits);
std::string SignedCell(const std::string& key, std::optional<double> value, int digits);
// Without the exact value, for long tables.
std::string PlainCell(std::optional<double> value, int digits);
std::string TextCell(std::string_view text);
std::string RowHead(std::string_view text);

}  // namespace tof::report
