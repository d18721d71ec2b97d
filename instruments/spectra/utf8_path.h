// File names that come as text: UTF-8 on every system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tof::spectra {

// A path made from the text directly would be read, on Windows, in a code page that is not UTF-8.
inline std::filesystem::path PathOfUtf8(std::string_view text) {
  return {std::u8string(text.begin(), text.end())};
}

}  // namespace tof::spectra
