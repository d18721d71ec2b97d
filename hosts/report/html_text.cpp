#include "hosts/report/html_text.h"

#include <cmath>
#include <cstddef>

namespace tof::report {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr const char* kAbsent = "<span class=\"absent\">\xE2\x80\x93</span>";

unsigned Byte(char c) {
  return static_cast<unsigned char>(c);
}

bool IsContinuation(std::string_view text, std::size_t at) {
  return at < text.size() && (Byte(text[at]) & 0xC0U) == 0x80U;
}

// The bytes of the UTF-8 character at `at`; 0 when there is none.
std::size_t Utf8Length(std::string_view text, std::size_t at) {
  const unsigned first = Byte(text[at]);
  std::size_t length = 0;
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) length = 2;
  if (first >= 0xE0 && first <= 0xEF) length = 3;
  if (first >= 0xF0 && first <= 0xF4) length = 4;
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text, at + i)) return 0;
  }
  if (length < 3) return length;
  // Overlong forms, surrogates and numbers beyond Unicode.
  const unsigned second = Byte(text[at + 1]);
  const bool wrong = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                     (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
  return wrong ? 0 : length;
}

void AppendEscaped(std::string_view character, std::string& html) {
  switch (character.front()) {
    case '&':
      html += "&amp;";
      return;
    case '<':
      html += "&lt;";
      return;
    case '>':
      html += "&gt;";
      return;
    case '"':
      html += "&quot;";
      return;
    case '\'':
      html += "&#39;";
      return;
    default:
      break;
  }
  const bool control = Byte(character.front()) < 0x20 && character != "\n" && character != "\t";
  html += control ? kReplacement : character;
}

std::string DataElement(double value, const std::string& shown) {
  return fmt::format("<data value=\"{}\">{}</data>", value, shown);
}

bool IsShown(std::optional<double> value) {
  return value && std::isfinite(*value);
}

std::string Cell(const std::string& key, const std::string& content) {
  const std::string attribute = key.empty() ? "" : fmt::format(" data-key=\"{}\"", Escape(key));
  return fmt::format("<td class=\"number\"{}>{}</td>", attribute, content);
}

}  // namespace

std::string Escape(std::string_view text) {
  std::string html;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = Utf8Length(text, at);
    if (length == 0) {
      html += kReplacement;
      ++at;
      continue;
    }
    AppendEscaped(text.substr(at, length), html);
    at += length;
  }
  return html;
}

std::string EscapeForScript(std::string_view json) {
  std::string text;
  for (const char c : json) {
    // Inside a JSON text these stand in strings only.
    if (c == '<' || c == '>' || c == '&') {
      text += fmt::format("\\u{:04x}", Byte(c));
    } else {
      text += c;
    }
  }
  return text;
}

std::string Number(std::optional<double> value, int digits) {
  if (!IsShown(value)) return kAbsent;
  return DataElement(*value, fmt::format("{:.{}f}", *value, digits));
}

std::string SignedNumber(std::optional<double> value, int digits) {
  if (!IsShown(value)) return kAbsent;
  return DataElement(*value, fmt::format("{:+.{}f}", *value, digits));
}

std::string ExactNumber(std::optional<double> value) {
  if (!IsShown(value)) return kAbsent;
  return DataElement(*value, fmt::format("{}", *value));
}

std::string NumberCell(const std::string& key, std::optional<double> value, int digits) {
  return Cell(key, Number(value, digits));
}

std::string SignedCell(const std::string& key, std::optional<double> value, int digits) {
  return Cell(key, SignedNumber(value, digits));
}

std::string PlainCell(std::optional<double> value, int digits) {
  return Cell("", IsShown(value) ? fmt::format("{:.{}f}", *value, digits) : kAbsent);
}

std::string TextCell(std::string_view text) {
  return "<td>" + Escape(text) + "</td>";
}

std::string RowHead(std::string_view text) {
  return "<th scope=\"row\">" + Escape(text) + "</th>";
}

}  // namespace tof::report
