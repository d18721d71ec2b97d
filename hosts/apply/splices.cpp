#include "hosts/apply/splices.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>

namespace tof::apply {

std::string Spliced(std::string_view text, std::vector<Splice> splices) {
  std::sort(splices.begin(), splices.end(),
            [](const Splice& a, const Splice& b) { return a.begin < b.begin; });
  std::string result;
  std::size_t copied = 0;
  for (const Splice& splice : splices) {
    result += text.substr(copied, splice.begin - copied);
    result += splice.text;
    copied = splice.end;
  }
  result += text.substr(copied);
  return result;
}

std::size_t BeginOf(pugi::xml_node element) {
  return static_cast<std::size_t>(element.offset_debug()) - 1;  // the name stands behind '<'
}

std::size_t EndOfTag(std::string_view text, std::size_t begin) {
  char quote = '\0';
  for (std::size_t i = begin; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      return i + 1;
    }
  }
  return text.size();
}

std::size_t EndOfLeaf(std::string_view text, pugi::xml_node element) {
  const std::size_t end_of_tag = EndOfTag(text, BeginOf(element));
  if (text[end_of_tag - 2] == '/') return end_of_tag;
  const std::string end_tag = std::string("</") + element.name();
  return EndOfTag(text, text.find(end_tag, end_of_tag));
}

std::string AsciiXml(pugi::xml_node node, const std::string& indent) {
  std::ostringstream utf8;
  node.print(utf8, indent.c_str(),
             indent.empty() ? pugi::format_raw : pugi::format_indent | pugi::format_default,
             pugi::encoding_utf8);
  std::string ascii;
  for (const wchar_t c : pugi::as_wide(utf8.str())) {
    const std::uint32_t code = std::char_traits<wchar_t>::to_int_type(c);
    const bool half_of_a_pair = code >= 0xD800 && code <= 0xDFFF;
    if (code < 0x80) {
      ascii += static_cast<char>(c);
    } else {
      ascii += half_of_a_pair ? "?" : fmt::format("&#{};", code);
    }
  }
  return ascii;
}

}  // namespace tof::apply
