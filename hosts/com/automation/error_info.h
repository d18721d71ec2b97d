// Errors between COM and the component: an HRESULT with error information on the one side, an
// AutomationError on the other.
#pragma once

#include <cstdint>
#include <string>

#include "component/automation/error.h"
#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

// HRESULT 0x800Annnn stands for the automation error nnnn. A negative number is an HRESULT itself;
// a positive one beyond 65,535, and 0, have none of their own and become E_FAIL.
HRESULT ResultOf(std::int32_t number);

// The reverse. The results of COM itself that mean the same as a run-time error count as that
// (DISP_E_TYPEMISMATCH as 13, DISP_E_UNKNOWNNAME as 438, ...); any other is its own number.
std::int32_t NumberOf(HRESULT result);

// What Windows says of a result, without a line end; "Automation error" when it says nothing.
std::string TextOfResult(HRESULT result);

// The error that a failed result stands for: with the usual text of its number, or what Windows
// says of it.
AutomationError ErrorOf(HRESULT result);

// The same for a call that leaves error information behind, where it did. Forget what an earlier
// call left with SetErrorInfo before such a call.
AutomationError ErrorLeftBy(HRESULT result);

// The error that a called object put into an exception record; the record's texts are freed. One
// without a number is 440: a failure is never 0, which would read as success.
AutomationError TakeError(EXCEPINFO& exception);

// Raises the error of a failed result.
inline void Check(HRESULT result) {
  if (FAILED(result)) throw ErrorOf(result);
}

// Leaves the error as error information and answers its HRESULT. `source` when it names none.
HRESULT Report(const AutomationError& error, REFIID iid, const char* source) noexcept;

// Runs the body of a COM method: S_OK, or the HRESULT of what it raises. Nothing passes it.
template <class Body>
HRESULT AtBoundary(REFIID iid, const char* source, Body&& body) noexcept {
  try {
    body();
    return S_OK;
  } catch (...) {
    return Report(CurrentError(), iid, source);
  }
}

}  // namespace tof::com
