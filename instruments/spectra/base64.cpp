#include "instruments/spectra/base64.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace tof::spectra {
namespace {

constexpr std::uint32_t kInvalid = 0x8000'0000;  // stays visible when four digits are combined

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::uint32_t, 256> MakeDigits() {
  std::array<std::uint32_t, 256> digits{};
  digits.fill(kInvalid);
  for (std::uint32_t i = 0; i < kAlphabet.size(); ++i) {
    digits[static_cast<unsigned char>(kAlphabet[i])] = i;
  }
  return digits;
}

constexpr std::array<std::uint32_t, 256> kDigits = MakeDigits();

bool IsWhiteSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::uint32_t Digit(char c) {
  return kDigits[static_cast<unsigned char>(c)];
}

// The 24 bits of four digits, or a value with the bit kInvalid.
std::uint32_t Group(const char* four) {
  const std::uint32_t a = Digit(four[0]);
  const std::uint32_t b = Digit(four[1]);
  const std::uint32_t c = Digit(four[2]);
  const std::uint32_t d = Digit(four[3]);
  return ((a | b | c | d) & kInvalid) | (a << 18 & 0xFC0000) | (b << 12 & 0x3F000) |
         (c << 6 & 0xFC0) | (d & 0x3F);
}

void PutBytes(std::uint32_t bits, std::size_t count, char* to) {
  for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<char>(bits >> (16 - 8 * i) & 0xFF);
}

std::optional<std::string> DecodeCompact(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  if (text.empty()) return std::string();
  const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with("=") ? 1 : 0;
  std::string bytes(text.size() / 4 * 3, '\0');
  const std::size_t last = text.size() - 4;
  char* to = bytes.data();
  for (std::size_t i = 0; i < last; i += 4, to += 3) {
    const std::uint32_t bits = Group(text.data() + i);
    if ((bits & kInvalid) != 0) return std::nullopt;
    PutBytes(bits, 3, to);
  }
  std::array<char, 4> tail{'A', 'A', 'A', 'A'};
  std::copy_n(text.data() + last, 4 - padding, tail.begin());
  const std::uint32_t bits = Group(tail.data());
  if ((bits & kInvalid) != 0) return std::nullopt;
  PutBytes(bits, 3, to);
  bytes.resize(bytes.size() - padding);
  return bytes;
}

}  // namespace

std::optional<std::string> DecodeBase64(std::string_view text) {
  if (std::count_if(text.begin(), text.end(), IsWhiteSpace) == 0) return DecodeCompact(text);
  std::string compact;
  compact.reserve(text.size());
  std::copy_if(text.begin(), text.end(), std::back_inserter(compact),
               [](char c) { return !IsWhiteSpace(c); });
  return DecodeCompact(compact);
}

std::string EncodeBase64(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4, '=');
  char* to = text.data();
  for (std::size_t i = 0; i < bytes.size(); i += 3, to += 4) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < count; ++k) {
      bits |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + k])) << (16 - 8 * k);
    }
    // One byte fills two digits, two fill three; the others stay padding.
    for (std::size_t k = 0; k <= count; ++k) to[k] = kAlphabet[bits >> (18 - 6 * k) & 0x3F];
  }
  return text;
}

}  // namespace tof::spectra
