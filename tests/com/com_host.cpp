#include "tests/com/com_host.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tof::com {

HRESULT Sink::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT Sink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                     EXCEPINFO* exception, UINT*) {
  if (id != 1 || parameters->cArgs != 2) return DISP_E_MEMBERNOTFOUND;
  const VARIANT& message = parameters->rgvarg[0];
  const VARIANT& status = parameters->rgvarg[1];
  EXPECT_EQ(V_VT(&status), VT_BYREF | VT_I4);
  EXPECT_EQ(V_VT(&message), VT_BYREF | VT_BSTR);
  events.emplace_back(*V_I4REF(&status), TextOf(*V_BSTRREF(&message)));
  on_event();
  if (answer == DISP_E_EXCEPTION) exception->bstrDescription = NewBstr("a sink's own trouble");
  return answer;
}

CallOutcome CallByName(IDispatch& object, const wchar_t* name, std::vector<VARIANT> arguments) {
  CallOutcome outcome;
  std::wstring writable = name;
  LPOLESTR names = writable.data();
  DISPID id = 0;
  outcome.result = object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(outcome.result)) return outcome;
  std::reverse(arguments.begin(), arguments.end());
  DISPPARAMS parameters{};
  parameters.rgvarg = arguments.data();
  parameters.cArgs = static_cast<UINT>(arguments.size());
  EXCEPINFO exception{};
  outcome.result = object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                                 outcome.value.Out(), &exception, nullptr);
  if (outcome.result == DISP_E_EXCEPTION) outcome.error = TakeError(exception);
  return outcome;
}

}  // namespace tof::com
