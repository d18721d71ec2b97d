// The factory of a class that COM creates.
#pragma once

#include <functional>
#include <utility>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/server/com_object.h"

namespace tof::com {

// Makes objects with `create`, which answers a reference counted for the caller or raises; the
// error is left as error information.
class ClassFactory final : public ComObject<ClassFactory, IClassFactory> {
 public:
  using Create = std::function<ComPtr<IUnknown>()>;

  ClassFactory(Create create, const char* source) : create_(std::move(create)), source_(source) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    ComPtr<IUnknown> made;
    const HRESULT result = AtBoundary(iid, source_, [&] { made = create_(); });
    return FAILED(result) ? result : made->QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  Create create_;
  const char* source_;  // in error information
};

}  // namespace tof::com
