// Binary data as text, RFC 4648 section 4.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tof::spectra {

// The bytes that `text` encodes; white space in it is ignored. None when it holds any other
// character, or isn't a whole number of padded groups of four.
std::optional<std::string> DecodeBase64(std::string_view text);

// `bytes` as one line of padded groups of four.
std::string EncodeBase64(std::string_view bytes);

}  // namespace tof::spectra
