#include "hosts/com/automation/owned_variant.h"

#include "component/automation/error.h"

namespace tof::com {
namespace {

template <class Store>
OwnedVariant Made(VARTYPE type, Store store) {
  VARIANT value;
  VariantInit(&value);
  store(value);
  V_VT(&value) = type;
  return OwnedVariant(value);
}

}  // namespace

OwnedVariant OwnedVariant::Of(std::int32_t value) {
  return Made(VT_I4, [&](VARIANT& v) { V_I4(&v) = value; });
}
OwnedVariant OwnedVariant::Of(double value) {
  return Made(VT_R8, [&](VARIANT& v) { V_R8(&v) = value; });
}
OwnedVariant OwnedVariant::Of(bool value) {
  return Made(VT_BOOL, [&](VARIANT& v) { V_BOOL(&v) = value ? VARIANT_TRUE : VARIANT_FALSE; });
}
OwnedVariant OwnedVariant::Of(std::string_view text) {
  return Made(VT_BSTR, [&](VARIANT& v) { V_BSTR(&v) = NewBstr(text); });
}
OwnedVariant OwnedVariant::Of(IDispatch* object) {
  return Made(VT_DISPATCH, [&](VARIANT& v) {
    V_DISPATCH(&v) = object;
    if (object != nullptr) object->AddRef();
  });
}
OwnedVariant OwnedVariant::ByRef(LONG& value) {
  return Made(VT_BYREF | VT_I4, [&](VARIANT& v) { V_I4REF(&v) = &value; });
}
OwnedVariant OwnedVariant::ByRef(double& value) {
  return Made(VT_BYREF | VT_R8, [&](VARIANT& v) { V_R8REF(&v) = &value; });
}
OwnedVariant OwnedVariant::ByRef(BSTR& value) {
  return Made(VT_BYREF | VT_BSTR, [&](VARIANT& v) { V_BSTRREF(&v) = &value; });
}
OwnedVariant OwnedVariant::ByRef(IDispatch*& value) {
  return Made(VT_BYREF | VT_DISPATCH, [&](VARIANT& v) { V_DISPATCHREF(&v) = &value; });
}
OwnedVariant OwnedVariant::ByRef(VARIANT& value) {
  return Made(VT_BYREF | VT_VARIANT, [&](VARIANT& v) { V_VARIANTREF(&v) = &value; });
}

const VARIANT& Dereferenced(const VARIANT& value) {
  const VARIANT* last = &value;
  while (V_VT(last) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(last) != nullptr) {
    last = V_VARIANTREF(last);
  }
  return *last;
}

HRESULT ChangeType(OwnedVariant& to, const VARIANT& from, LCID locale, VARTYPE type) {
  // A source that is not constant is asked for, though nothing changes it.
  VARIANT source = from;
  return VariantChangeTypeEx(to.Out(), &source, locale, 0, type);
}

ComPtr<IDispatch> ObjectIn(const VARIANT& value) {
  const VARIANT& held = Dereferenced(value);
  IUnknown* object = nullptr;
  switch (V_VT(&held)) {
    case VT_EMPTY:
      return {};
    case VT_DISPATCH:
      return ComPtr<IDispatch>(V_DISPATCH(&held));
    case VT_UNKNOWN:
      object = V_UNKNOWN(&held);
      break;
    case VT_BYREF | VT_DISPATCH:
      return ComPtr<IDispatch>(*V_DISPATCHREF(&held));
    case VT_BYREF | VT_UNKNOWN:
      object = *V_UNKNOWNREF(&held);
      break;
    default:
      Raise(RunTimeError::kTypeMismatch);
  }
  if (object == nullptr) return {};
  ComPtr<IDispatch> dispatch = ComPtr<IUnknown>(object).As<IDispatch>();
  if (!dispatch) Raise(RunTimeError::kTypeMismatch);
  return dispatch;
}

}  // namespace tof::com
