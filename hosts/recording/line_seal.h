// The check sum at the end of each line of a recording.
//
// It is of this line and all lines before it, so that a line that was changed, dropped or moved is
// found where it stands: CRC-32 of the bytes up to the comma before "crc", without line ends.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tof::recording {

// The sum of what has sum `before`, followed by `text`.
std::uint32_t Continued(std::uint32_t before, std::string_view text);

// What ends a line: ,"crc":"0a1b2c3d"} without a line end.
std::string SealOf(std::uint32_t sum);

struct SealedLine {
  std::string_view content;  // up to the comma before "crc": a JSON object without its last brace
  std::uint32_t sum = 0;
};

// None for a line that does not end in a seal.
std::optional<SealedLine> Unsealed(std::string_view line);

}  // namespace tof::recording
