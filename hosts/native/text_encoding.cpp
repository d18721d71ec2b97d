#include "hosts/native/text_encoding.h"

#include <cstddef>
#include <cstdint>

namespace tof::native {
namespace {

struct Character {
  std::uint32_t code_point = '?';
  std::size_t length = 1;  // bytes used
};

std::uint32_t ByteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

// The character at the start of `text`, which is not empty; a '?' of one byte when malformed.
Character FirstCharacter(std::string_view text) {
  const std::uint32_t lead = ByteAt(text, 0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};

  std::uint32_t code_point = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteAt(text, i) & 0xC0U) != 0x80U) return {};
    code_point = (code_point << 6) | (ByteAt(text, i) & 0x3FU);
  }
  // Longer than the character needs: not well-formed.
  if ((length == 3 && code_point < 0x800) || (length == 4 && code_point < 0x10000)) return {};
  return {code_point, length};
}

}  // namespace

std::string Latin1FromUtf8(std::string_view utf8) {
  std::string latin1;
  latin1.reserve(utf8.size());
  while (!utf8.empty()) {
    const Character character = FirstCharacter(utf8);
    latin1 += character.code_point <= 0xFF ? static_cast<char>(character.code_point) : '?';
    utf8.remove_prefix(character.length);
  }
  return latin1;
}

}  // namespace tof::native
