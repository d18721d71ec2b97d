#include "hosts/com/automation/error_info.h"

#include <array>

#include "hosts/com/automation/com_ptr.h"
#include "hosts/com/automation/text.h"

namespace tof::com {
namespace {

constexpr std::uint32_t kAutomationFacility = 0x800A0000U;
constexpr std::int32_t kLargestNumber = 0xFFFF;

struct SameMeaning {
  HRESULT result;
  std::int32_t number;
};
constexpr std::array<SameMeaning, 20> kSameMeaning{{
    {E_INVALIDARG, 5},
    {DISP_E_OVERFLOW, 6},
    {E_OUTOFMEMORY, 7},
    {DISP_E_BADINDEX, 9},
    {DISP_E_DIVBYZERO, 11},
    {DISP_E_TYPEMISMATCH, 13},
    {DISP_E_BADVARTYPE, 13},
    {STG_E_FILENOTFOUND, 53},
    {STG_E_TOOMANYOPENFILES, 67},
    {STG_E_ACCESSDENIED, 70},
    {E_ACCESSDENIED, 70},
    {STG_E_PATHNOTFOUND, 76},
    {REGDB_E_CLASSNOTREG, 429},
    {CO_E_CLASSSTRING, 429},
    {E_NOINTERFACE, 430},
    {DISP_E_UNKNOWNNAME, 438},
    {DISP_E_MEMBERNOTFOUND, 438},
    {E_NOTIMPL, 445},
    {DISP_E_PARAMNOTOPTIONAL, 449},
    {DISP_E_BADPARAMCOUNT, 450},
}};

ComPtr<IErrorInfo> NewErrorInfo(const AutomationError& error, REFIID iid, const char* source) {
  ComPtr<ICreateErrorInfo> info;
  if (FAILED(CreateErrorInfo(info.Out()))) return {};
  const Bstr description(error.description());
  const Bstr where(error.source().empty() ? std::string_view(source)
                                          : std::string_view(error.source()));
  info->SetGUID(iid);
  info->SetDescription(description.get());
  info->SetSource(where.get());
  return info.As<IErrorInfo>();
}

// The usual text of an automation error's number; what Windows says of any other result.
std::string TextOfNumber(std::int32_t number, HRESULT result) {
  const bool is_automation_error = number > 0 && number <= kLargestNumber;
  return is_automation_error ? UsualTextOf(number) : TextOfResult(result);
}

// An empty record is an error all the same: 0 would read as success.
std::int32_t NumberIn(const EXCEPINFO& exception) {
  if (exception.wCode != 0) return exception.wCode;
  if (exception.scode != S_OK) return NumberOf(exception.scode);
  return static_cast<std::int32_t>(RunTimeError::kAutomationError);
}

}  // namespace

HRESULT ResultOf(std::int32_t number) {
  if (number < 0) return number;
  if (number == 0 || number > kLargestNumber) return E_FAIL;
  return static_cast<HRESULT>(kAutomationFacility | static_cast<std::uint32_t>(number));
}

std::int32_t NumberOf(HRESULT result) {
  const auto bits = static_cast<std::uint32_t>(result);
  if ((bits & 0xFFFF0000U) == kAutomationFacility && (bits & 0xFFFFU) != 0) {
    return static_cast<std::int32_t>(bits & 0xFFFFU);
  }
  for (const SameMeaning& same : kSameMeaning) {
    if (same.result == result) return same.number;
  }
  return result;
}

std::string TextOfResult(HRESULT result) {
  wchar_t* text = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, static_cast<DWORD>(result), 0,
      // The function stores a pointer where its declaration says text.
      reinterpret_cast<wchar_t*>(&text),  // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
      0, nullptr);
  if (length == 0) return DescriptionOf(RunTimeError::kAutomationError);
  std::string utf8 = Utf8({text, length});
  LocalFree(text);
  utf8.erase(utf8.find_last_not_of(" \r\n") + 1);
  return utf8;
}

AutomationError ErrorOf(HRESULT result) {
  const std::int32_t number = NumberOf(result);
  return {number, TextOfNumber(number, result)};
}

AutomationError ErrorLeftBy(HRESULT result) {
  ComPtr<IErrorInfo> info;
  Bstr description;
  Bstr source;
  if (GetErrorInfo(0, info.Out()) == S_OK && info) {
    info->GetDescription(description.Out());
    info->GetSource(source.Out());
  }
  const std::int32_t number = NumberOf(result);
  std::string text = description.Text();
  if (text.empty()) text = TextOfNumber(number, result);
  return {number, text, source.Text()};
}

AutomationError TakeError(EXCEPINFO& exception) {
  if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
  const std::int32_t number = NumberIn(exception);
  std::string description = TextOf(exception.bstrDescription);
  if (description.empty()) description = TextOfNumber(number, exception.scode);
  AutomationError error(number, description, TextOf(exception.bstrSource));
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return error;
}

HRESULT Report(const AutomationError& error, REFIID iid, const char* source) noexcept {
  try {
    const ComPtr<IErrorInfo> info = NewErrorInfo(error, iid, source);
    SetErrorInfo(0, info.get());
  } catch (...) {
    // The number alone still says what happened.
    SetErrorInfo(0, nullptr);
  }
  return ResultOf(error.number());
}

}  // namespace tof::com
