// Text between COM (UTF-16) and the component (UTF-8).
#pragma once

#include <string>
#include <string_view>

#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

// What is not well-formed becomes U+FFFD.
std::string Utf8(std::wstring_view wide);
std::wstring Wide(std::string_view utf8);

std::string TextOf(BSTR text);        // a null one is the empty text
BSTR NewBstr(std::string_view utf8);  // the caller frees it
std::string TextOf(REFGUID guid);     // as in "{88b5c185-...}"

// A text for a call; freed afterwards.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::string_view utf8) : text_(NewBstr(utf8)) {}
  ~Bstr() { SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  BSTR get() const { return text_; }
  BSTR* Out() { return &text_; }
  std::string Text() const { return TextOf(text_); }

 private:
  BSTR text_ = nullptr;
};

}  // namespace tof::com
