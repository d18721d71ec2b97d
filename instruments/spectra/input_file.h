// Files and numbers as they come in.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace tof::spectra {

// A file to be read piece by piece. Raises an InputError when it can't be opened; whether it could
// be read to its end is for the caller to ask (bad()).
std::ifstream OpenForReading(const std::filesystem::path& path);

// The bytes of a regular file. Raises an InputError when it can't be read to its end.
std::string ReadWholeFile(const std::filesystem::path& path);

// The number that the whole of `text` is, in the C locale: no blanks around it, no trailing text,
// no NaN, no infinity, nothing that the type can't hold. A leading '+' is accepted.
std::optional<double> ParseDouble(std::string_view text);
std::optional<std::int32_t> ParseInt32(std::string_view text);

}  // namespace tof::spectra
