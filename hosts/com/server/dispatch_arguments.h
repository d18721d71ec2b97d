// The arguments of one late-bound call, on their way from the caller's variants to the parameters
// of a function and back.
#pragma once

#include <vector>

#include "hosts/com/automation/owned_variant.h"

namespace tof::com {

// A parameter's type. Interfaces count as VT_DISPATCH, enumerations as VT_I4.
struct ParameterType {
  VARTYPE type = VT_EMPTY;
  bool by_reference = false;
  HREFTYPE interface_reference = 0;  // of an interface other than IDispatch, in its type library
};

class DispatchArguments {
 public:
  DispatchArguments(ITypeInfo& info, const FUNCDESC& function, LCID locale);

  // Finds and converts every argument; the number of a bad one goes to `bad_argument` (may be
  // null).
  HRESULT Take(const DISPPARAMS& given, UINT* bad_argument);

  // Calls the function of the interface that `object` points to.
  HRESULT CallOn(void* object);

  // Stores what came back by reference into the caller's variables, and the result.
  HRESULT GiveBack(VARIANT* result);

 private:
  // One parameter of the call in progress.
  struct Slot {
    ParameterType parameter;
    VARIANT* given = nullptr;  // the caller's argument, references to variants followed
    bool is_variable = false;  // `given` lies behind such a reference: a script's variable
    OwnedVariant local;        // the converted value, or what a by-reference parameter refers to
    VARIANT passed{};          // what the function gets; owns nothing
    bool gives_back = false;   // `local` goes to `given` after a success
  };

  HRESULT Place(const DISPPARAMS& given, UINT* bad_argument);
  HRESULT UseDefault(UINT index);
  HRESULT Convert(Slot& slot);
  HRESULT ConvertObject(Slot& slot);
  void ReferToLocal(Slot& slot);
  HRESULT StoreBack(Slot& slot);

  ITypeInfo& info_;
  const FUNCDESC& function_;
  LCID locale_;
  std::vector<Slot> slots_;  // the last one is the result, if there is one
  bool has_result_ = false;
};

}  // namespace tof::com
