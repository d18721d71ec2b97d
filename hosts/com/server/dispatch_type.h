// A dual interface as scripts call it: IDispatch over the interface's own functions, driven by the
// type library.
//
// ITypeInfo::Invoke would do most of this, but it takes no variable of a script for a typed
// by-reference parameter, and optional arguments that are left out are not safe with it everywhere.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "hosts/com/automation/com_ptr.h"
#include "hosts/com/automation/owned_variant.h"

namespace tof::com {

class DispatchType {
 public:
  // Described in one of this module's embedded type libraries. Kept as long as anybody holds it.
  static std::shared_ptr<const DispatchType> Of(REFIID iid);

  explicit DispatchType(REFIID iid);
  ~DispatchType();
  DispatchType(const DispatchType&) = delete;
  DispatchType& operator=(const DispatchType&) = delete;

  ITypeInfo* TypeInfo() const { return info_.get(); }

  // IDispatch::Invoke on `object`, a pointer to the interface. Arguments:
  // - positional or named; references to variants are followed to any depth
  // - by value: converted to the parameter's type
  // - by reference: a reference of exactly the type goes straight through; anything else is
  // converted
  //   into a local, and a caller's variable receives the local's value after a success
  // - left out, or a missing value: the default of the type library, for optional ones
  HRESULT Invoke(void* object, DISPID id, LCID locale, WORD kind, DISPPARAMS* parameters,
                 VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) const noexcept;

 private:
  const FUNCDESC* Find(DISPID id, WORD kind) const;

  ComPtr<ITypeInfo> info_;  // of the interface itself, not of its late-bound view
  std::vector<FUNCDESC*> functions_;
};

// Keeps the descriptions of interfaces whose objects come and go: to read one takes longer than all
// calls of a short-lived object.
template <class... Interfaces>
class KeptTypes {
  std::array<std::shared_ptr<const DispatchType>, sizeof...(Interfaces)> types_{
      DispatchType::Of(__uuidof(Interfaces))...};
};

}  // namespace tof::com
