// A text in which places are replaced and all else stays as it is.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace tof::apply {

struct Splice {
  std::size_t begin = 0;
  std::size_t end = 0;  // the first character that stays
  std::string text;
};

// The splices may come in any order; they don't overlap.
std::string Spliced(std::string_view text, std::vector<Splice> splices);

// Where an element stands in the text that it was parsed from.
std::size_t BeginOf(pugi::xml_node element);
// Behind the tag that begins at `begin`.
std::size_t EndOfTag(std::string_view text, std::size_t begin);
// Behind an element that holds no other.
std::size_t EndOfLeaf(std::string_view text, pugi::xml_node element);

// As XML in an encoding that knows nothing but ASCII: indented by `indent`, without declaration.
std::string AsciiXml(pugi::xml_node node, const std::string& indent);

}  // namespace tof::apply
