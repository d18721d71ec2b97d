// Recordings that somebody has changed on purpose, and sealed again.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/recording/encoding.h"
#include "hosts/recording/line_seal.h"

namespace tof::recording {

inline std::vector<std::string> LinesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return lines;
}

inline std::string TextOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

inline std::vector<Json> ObjectsOf(const std::string& text) {
  std::vector<Json> objects;
  for (const std::string& line : LinesOf(text)) objects.push_back(Json::parse(line));
  return objects;
}

// With new check sums and calls numbered anew.
inline std::string Sealed(std::vector<Json> objects) {
  std::string text;
  std::uint32_t sum = 0;
  std::int64_t calls = 0;
  for (Json& object : objects) {
    object.erase("crc");
    if (object.contains("call")) object["call"] = ++calls;
    std::string line = object.dump();
    line.pop_back();
    sum = Continued(sum, line);
    text += line + SealOf(sum) + "\n";
  }
  return text;
}

}  // namespace tof::recording
