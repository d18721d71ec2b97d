#include "hosts/com/server/dispatch_arguments.h"

#include <algorithm>

#include "hosts/com/automation/error_info.h"

namespace tof::com {
namespace {

// Looked up for objects that are really passed: the library that declares the interface may be one
// that is not registered on this machine.
IID InterfaceOf(ITypeInfo& info, HREFTYPE reference) {
  if (reference == 0) return IID_IDispatch;
  ComPtr<ITypeInfo> type;
  Check(info.GetRefTypeInfo(reference, type.Out()));
  TYPEATTR* attributes = nullptr;
  Check(type->GetTypeAttr(&attributes));
  const IID iid = attributes->guid;
  type->ReleaseTypeAttr(attributes);
  return iid;
}

ParameterType TypeOf(const TYPEDESC& description) {
  const TYPEDESC* type = &description;
  int pointers = 0;
  while (type->vt == VT_PTR) {
    type = type->lptdesc;
    ++pointers;
  }
  if (type->vt == VT_USERDEFINED && pointers == 0) return {.type = VT_I4};
  if (type->vt == VT_USERDEFINED) {
    return {
        .type = VT_DISPATCH, .by_reference = pointers > 1, .interface_reference = type->hreftype};
  }
  return {.type = type->vt, .by_reference = pointers > 0};
}

bool IsMissing(const VARIANT& value) {
  return V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND;
}

// The address of a variant's value; all of them begin at the same place, but a decimal.
void* ValueOf(VARIANT& value) {
  return &V_I4(&value);
}

}  // namespace

DispatchArguments::DispatchArguments(ITypeInfo& info, const FUNCDESC& function, LCID locale)
    : info_(info),
      function_(function),
      locale_(locale),
      slots_(static_cast<std::size_t>(function.cParams)) {
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    slots_[i].parameter = TypeOf(function.lprgelemdescParam[i].tdesc);
  }
  if (slots_.empty()) return;
  const ELEMDESC& last = function.lprgelemdescParam[slots_.size() - 1];
  has_result_ = (last.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
}

HRESULT DispatchArguments::Place(const DISPPARAMS& given, UINT* bad_argument) {
  const std::size_t inputs = slots_.size() - (has_result_ ? 1 : 0);
  const UINT positional = given.cArgs - given.cNamedArgs;
  if (given.cNamedArgs > given.cArgs || positional > inputs) return DISP_E_BADPARAMCOUNT;
  const auto place = [&](std::size_t parameter, UINT argument) {
    VARIANT* value = &given.rgvarg[argument];
    Slot& slot = slots_[parameter];
    while (V_VT(value) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(value) != nullptr) {
      slot.is_variable = true;
      value = V_VARIANTREF(value);
    }
    slot.given = value;
  };
  for (UINT i = 0; i < positional; ++i) place(i, given.cArgs - 1 - i);
  for (UINT i = 0; i < given.cNamedArgs; ++i) {
    DISPID id = given.rgdispidNamedArgs[i];
    if (id == DISPID_PROPERTYPUT) id = static_cast<DISPID>(inputs) - 1;
    if (id < 0 || static_cast<std::size_t>(id) >= inputs ||
        slots_[static_cast<std::size_t>(id)].given != nullptr) {
      if (bad_argument != nullptr) *bad_argument = i;
      return DISP_E_PARAMNOTFOUND;
    }
    place(static_cast<std::size_t>(id), i);
  }
  return S_OK;
}

HRESULT DispatchArguments::UseDefault(UINT index) {
  Slot& slot = slots_[index];
  const PARAMDESC& description = function_.lprgelemdescParam[index].paramdesc;
  if ((description.wParamFlags & PARAMFLAG_FOPT) == 0) return DISP_E_PARAMNOTOPTIONAL;
  slot.given = nullptr;
  slot.is_variable = false;
  OwnedVariant value;
  if ((description.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
    const VARIANT& declared = description.pparamdescex->varDefaultValue;
    const HRESULT result = ChangeType(value, declared, locale_, slot.parameter.type);
    if (FAILED(result)) return result;
  }
  slot.local = std::move(value);
  ReferToLocal(slot);
  return S_OK;
}

// A by-reference parameter refers to the local value, any other gets it.
void DispatchArguments::ReferToLocal(Slot& slot) {
  VARIANT local = slot.local.Detach();
  slot.local = OwnedVariant(local);
  slot.passed = local;
  if (!slot.parameter.by_reference) return;
  // The local must stay where it is from here on: slots are not moved any more.
  VARIANT& kept =
      const_cast<VARIANT&>(slot.local.get());  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  V_VT(&slot.passed) = static_cast<VARTYPE>(VT_BYREF | slot.parameter.type);
  V_BYREF(&slot.passed) = slot.parameter.type == VT_VARIANT ? &kept : ValueOf(kept);
}

HRESULT DispatchArguments::ConvertObject(Slot& slot) {
  IUnknown* object = nullptr;
  switch (V_VT(slot.given)) {
    case VT_EMPTY:
      if (!slot.parameter.by_reference) return DISP_E_TYPEMISMATCH;
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      object = V_UNKNOWN(slot.given);
      break;
    case VT_BYREF | VT_DISPATCH:
    case VT_BYREF | VT_UNKNOWN:
      object = *V_UNKNOWNREF(slot.given);
      break;
    default:
      return DISP_E_TYPEMISMATCH;
  }
  VARIANT local;
  VariantInit(&local);
  V_VT(&local) = VT_DISPATCH;
  V_DISPATCH(&local) = nullptr;
  if (object != nullptr) {
    void* wanted = nullptr;
    if (FAILED(object->QueryInterface(InterfaceOf(info_, slot.parameter.interface_reference),
                                      &wanted))) {
      return DISP_E_TYPEMISMATCH;
    }
    V_DISPATCH(&local) = static_cast<IDispatch*>(wanted);
  }
  slot.local = OwnedVariant(local);
  slot.gives_back =
      slot.parameter.by_reference && (slot.is_variable || (V_VT(slot.given) & VT_BYREF) != 0);
  ReferToLocal(slot);
  return S_OK;
}

HRESULT DispatchArguments::Convert(Slot& slot) {
  const ParameterType& parameter = slot.parameter;
  VARIANT& given = *slot.given;
  if ((V_VT(&given) & VT_BYREF) != 0 && V_BYREF(&given) == nullptr) return DISP_E_TYPEMISMATCH;
  if (parameter.type == VT_DISPATCH) return ConvertObject(slot);
  if (parameter.type == VT_VARIANT) {
    // As it is, arrays are not copied; a reference only to a variable that can hold anything.
    slot.passed = given;
    if (!parameter.by_reference) return S_OK;
    if (slot.is_variable) {
      V_VT(&slot.passed) = VT_BYREF | VT_VARIANT;
      V_VARIANTREF(&slot.passed) = &given;
      return S_OK;
    }
    const HRESULT copied = VariantCopyInd(slot.local.Out(), &given);
    if (FAILED(copied)) return copied;
    ReferToLocal(slot);
    return S_OK;
  }
  if (parameter.by_reference && V_VT(&given) == (VT_BYREF | parameter.type)) {
    slot.passed = given;
    return S_OK;
  }
  const HRESULT converted = ChangeType(slot.local, given, locale_, parameter.type);
  if (FAILED(converted)) return converted;
  slot.gives_back = parameter.by_reference && (slot.is_variable || (V_VT(&given) & VT_BYREF) != 0);
  ReferToLocal(slot);
  return S_OK;
}

HRESULT DispatchArguments::Take(const DISPPARAMS& given, UINT* bad_argument) {
  const HRESULT placed = Place(given, bad_argument);
  if (FAILED(placed)) return placed;
  const std::size_t inputs = slots_.size() - (has_result_ ? 1 : 0);
  for (std::size_t i = 0; i < inputs; ++i) {
    Slot& slot = slots_[i];
    const bool missing = slot.given == nullptr || IsMissing(*slot.given);
    const HRESULT result = missing ? UseDefault(static_cast<UINT>(i)) : Convert(slot);
    if (FAILED(result)) {
      if (bad_argument != nullptr) *bad_argument = given.cArgs - 1 - static_cast<UINT>(i);
      return result;
    }
  }
  if (has_result_) {
    Slot& slot = slots_.back();
    VARIANT empty;
    VariantInit(&empty);
    if (slot.parameter.type != VT_VARIANT) {
      V_I8(&empty) = 0;
      V_VT(&empty) = slot.parameter.type;
    }
    slot.local = OwnedVariant(empty);
    ReferToLocal(slot);
  }
  return S_OK;
}

HRESULT DispatchArguments::CallOn(void* object) {
  std::vector<VARTYPE> types;
  std::vector<VARIANTARG*> values;
  for (Slot& slot : slots_) {
    const bool whole = !slot.parameter.by_reference && slot.parameter.type == VT_VARIANT;
    types.push_back(whole ? static_cast<VARTYPE>(VT_VARIANT) : V_VT(&slot.passed));
    values.push_back(&slot.passed);
  }
  VARIANT answer;
  VariantInit(&answer);
  const HRESULT called =
      DispCallFunc(object, static_cast<ULONG_PTR>(function_.oVft), CC_STDCALL, VT_I4,
                   static_cast<UINT>(types.size()), types.data(), values.data(), &answer);
  return FAILED(called) ? called : HRESULT{V_I4(&answer)};
}

HRESULT DispatchArguments::StoreBack(Slot& slot) {
  if (slot.is_variable && (V_VT(slot.given) & VT_BYREF) == 0) {
    VariantClear(slot.given);
    *slot.given = slot.local.Detach();
    return S_OK;
  }
  // A reference of another type than the parameter's.
  const auto type = static_cast<VARTYPE>(V_VT(slot.given) & ~VT_BYREF);
  if (type == VT_DISPATCH || type == VT_UNKNOWN) {
    IUnknown*& variable = *V_UNKNOWNREF(slot.given);
    if (variable != nullptr) variable->Release();
    VARIANT local = slot.local.Detach();
    variable = V_UNKNOWN(&local);
    return S_OK;
  }
  OwnedVariant converted;
  const HRESULT result = ChangeType(converted, slot.local.get(), locale_, type);
  if (FAILED(result)) return result;
  VARIANT value = converted.Detach();
  const std::size_t size =
      type == VT_BSTR                                      ? sizeof(BSTR)
      : type == VT_UI1 || type == VT_I1                    ? 1
      : type == VT_I2 || type == VT_UI2 || type == VT_BOOL ? 2
      : type == VT_I4 || type == VT_UI4 || type == VT_INT || type == VT_UINT || type == VT_R4 ? 4
      : type == VT_I8 || type == VT_UI8 || type == VT_R8 || type == VT_CY || type == VT_DATE  ? 8
                                                                                              : 0;
  if (type == VT_BSTR) SysFreeString(*V_BSTRREF(slot.given));
  std::copy_n(static_cast<const char*>(ValueOf(value)), size,
              static_cast<char*>(V_BYREF(slot.given)));
  return S_OK;
}

HRESULT DispatchArguments::GiveBack(VARIANT* result) {
  for (Slot& slot : slots_) {
    if (!slot.gives_back) continue;
    const HRESULT stored = StoreBack(slot);
    if (FAILED(stored)) return stored;
  }
  if (result == nullptr) return S_OK;
  VariantInit(result);
  if (has_result_) *result = slots_.back().local.Detach();
  return S_OK;
}

}  // namespace tof::com
