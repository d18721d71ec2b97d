// The log files hold single-byte characters; inside the program text is UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace tof::native {

// UTF-8 as ISO 8859-1. A character beyond U+00FF becomes one '?', and so does each byte that is not
// part of well-formed UTF-8.
std::string Latin1FromUtf8(std::string_view utf8);

}  // namespace tof::native
