// The format of a spectrum, by its file's name.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>

namespace tof::cli {

// Whether the name ends in .mzML, in any case of letters; every other file is text.
inline bool IsMzml(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return extension == ".mzml";
}

}  // namespace tof::cli
