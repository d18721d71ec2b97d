#include "hosts/com/automation/text.h"

#include <limits>
#include <new>

namespace tof::com {
namespace {

int LengthFor(std::size_t length) {
  if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::bad_alloc();
  return static_cast<int>(length);
}

}  // namespace

std::string Utf8(std::wstring_view wide) {
  if (wide.empty()) return {};
  const int length = LengthFor(wide.size());
  const int needed =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, utf8.data(), needed, nullptr, nullptr);
  return utf8;
}

std::wstring Wide(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int length = LengthFor(utf8.size());
  const int needed = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, wide.data(), needed);
  return wide;
}

std::string TextOf(BSTR text) {
  return text == nullptr ? std::string() : Utf8({text, SysStringLen(text)});
}

BSTR NewBstr(std::string_view utf8) {
  const std::wstring wide = Wide(utf8);
  const BSTR text = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (text == nullptr) throw std::bad_alloc();
  return text;
}

std::string TextOf(REFGUID guid) {
  wchar_t text[40] = {};
  const int length = StringFromGUID2(guid, text, 40);
  return Utf8({text, static_cast<std::size_t>(length - 1)});
}

}  // namespace tof::com
