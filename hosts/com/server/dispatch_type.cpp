#include "hosts/com/server/dispatch_type.h"

#include <map>
#include <mutex>
#include <string>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/server/dispatch_arguments.h"
#include "hosts/com/server/module.h"

namespace tof::com {
namespace {

// The type library gives a dual interface's late-bound view first.
ComPtr<ITypeInfo> InterfaceInfo(REFIID iid) {
  ComPtr<ITypeInfo> info = EmbeddedTypeInfo(iid);
  TYPEATTR* attributes = nullptr;
  Check(info->GetTypeAttr(&attributes));
  const TYPEKIND kind = attributes->typekind;
  info->ReleaseTypeAttr(attributes);
  if (kind == TKIND_INTERFACE) return info;
  HREFTYPE reference = 0;
  Check(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  ComPtr<ITypeInfo> vtable;
  Check(info->GetRefTypeInfo(reference, vtable.Out()));
  return vtable;
}

// What the called function left as its error goes to the caller's record.
void FillException(EXCEPINFO* exception, HRESULT result) {
  if (exception == nullptr) return;
  *exception = EXCEPINFO{};
  exception->scode = result;
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.Out()) != S_OK || !info) return;
  info->GetDescription(&exception->bstrDescription);
  info->GetSource(&exception->bstrSource);
}

}  // namespace

std::shared_ptr<const DispatchType> DispatchType::Of(REFIID iid) {
  // Objects of several apartments share the descriptions.
  static std::mutex mutex;
  static std::map<std::string, std::weak_ptr<const DispatchType>> known;
  const std::lock_guard lock(mutex);
  std::weak_ptr<const DispatchType>& slot = known[TextOf(iid)];
  std::shared_ptr<const DispatchType> type = slot.lock();
  if (type == nullptr) {
    type = std::make_shared<DispatchType>(iid);
    slot = type;
  }
  return type;
}

DispatchType::DispatchType(REFIID iid) : info_(InterfaceInfo(iid)) {
  TYPEATTR* attributes = nullptr;
  Check(info_->GetTypeAttr(&attributes));
  const UINT count = attributes->cFuncs;
  info_->ReleaseTypeAttr(attributes);
  functions_.reserve(count);
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    if (SUCCEEDED(info_->GetFuncDesc(i, &function))) functions_.push_back(function);
  }
}

DispatchType::~DispatchType() {
  for (FUNCDESC* function : functions_) info_->ReleaseFuncDesc(function);
}

const FUNCDESC* DispatchType::Find(DISPID id, WORD kind) const {
  for (const FUNCDESC* function : functions_) {
    if (function->memid == id && (function->invkind & kind) != 0) return function;
  }
  return nullptr;
}

HRESULT DispatchType::Invoke(void* object, DISPID id, LCID locale, WORD kind,
                             DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                             UINT* bad_argument) const noexcept {
  try {
    if (parameters == nullptr) return E_INVALIDARG;
    const FUNCDESC* function = Find(id, kind);
    if (function == nullptr) return DISP_E_MEMBERNOTFOUND;
    DispatchArguments arguments(*info_.get(), *function, locale);
    const HRESULT taken = arguments.Take(*parameters, bad_argument);
    if (FAILED(taken)) return taken;
    SetErrorInfo(0, nullptr);
    const HRESULT called = arguments.CallOn(object);
    if (FAILED(called)) {
      FillException(exception, called);
      return DISP_E_EXCEPTION;
    }
    return arguments.GiveBack(result);
  } catch (...) {
    return ResultOf(CurrentError().number());
  }
}

}  // namespace tof::com
