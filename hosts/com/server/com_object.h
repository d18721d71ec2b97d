// What every COM object of this project has: a count of references and its interfaces.
#pragma once

#include <type_traits>
#include <utility>

#include "hosts/com/automation/com_ptr.h"
#include "hosts/com/server/module.h"

namespace tof::com {

// Derived is final and offers First, which its IUnknown is, and Others. No virtual destructor: what
// crosses the boundary holds the functions of its interfaces alone.
template <class Derived, class First, class... Others>
class ComObject : public First, public Others... {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == __uuidof(IUnknown)) *object = static_cast<First*>(this);
    if (iid == __uuidof(IDispatch) && std::is_base_of_v<IDispatch, First>) {
      *object = static_cast<First*>(this);
    }
    Offer<First>(iid, object);
    (Offer<Others>(iid, object), ...);
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    return static_cast<ULONG>(InterlockedIncrement(&references_));
  }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete static_cast<Derived*>(this);
    return static_cast<ULONG>(left);
  }

 protected:
  ComObject() = default;
  ~ComObject() = default;

 private:
  template <class Interface>
  void Offer(REFIID iid, void** object) {
    if (iid == __uuidof(Interface)) *object = static_cast<Interface*>(this);
  }

  LONG references_ = 1;
  ModuleReference keeps_module_loaded_;
};

// A new object with one reference.
template <class Object, class... Arguments>
ComPtr<Object> NewObject(Arguments&&... arguments) {
  return ComPtr<Object>::Adopt(new Object(std::forward<Arguments>(arguments)...));
}

}  // namespace tof::com
