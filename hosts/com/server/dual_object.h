// An object with a dual interface: the interface's own functions stand in Derived, the late-bound
// half and the error information here.
#pragma once

#include <memory>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/server/com_object.h"
#include "hosts/com/server/dispatch_type.h"

namespace tof::com {

template <class Derived, class Interface, class... Others>
class DualObject : public ComObject<Derived, Interface, ISupportErrorInfo, Others...> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) final {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) final {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    *info = ComPtr<ITypeInfo>(type_->TypeInfo()).Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) final {
    return type_->TypeInfo()->GetIDsOfNames(names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID locale, WORD kind,
                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                   UINT* bad_argument) final {
    // The object outlives the call, whatever the caller's event handlers release.
    const ComPtr<Interface> self(this);
    return type_->Invoke(static_cast<Interface*>(this), id, locale, kind, parameters, result,
                         exception, bad_argument);
  }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) final {
    return iid == __uuidof(Interface) ? S_OK : S_FALSE;
  }

 protected:
  DualObject() = default;
  ~DualObject() = default;

  // Runs the body of one of the interface's functions; see AtBoundary.
  template <class Body>
  HRESULT Answer(const char* source, Body&& body) noexcept {
    return AtBoundary(__uuidof(Interface), source, std::forward<Body>(body));
  }

 private:
  std::shared_ptr<const DispatchType> type_ = DispatchType::Of(__uuidof(Interface));
};

}  // namespace tof::com
