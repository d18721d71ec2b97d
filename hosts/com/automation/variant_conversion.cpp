#include "hosts/com/automation/variant_conversion.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "hosts/com/automation/dispatch_object.h"
#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/safe_array.h"

namespace tof::com {
namespace {

template <class T>
const T& Read(const void* place) {
  return *static_cast<const T*>(place);
}

// Through a conversion of Windows' own.
Variant Converted(const VARIANT& value, VARTYPE type) {
  OwnedVariant converted;
  const HRESULT result = ChangeType(converted, value, LOCALE_USER_DEFAULT, type);
  if (FAILED(result)) return Variant::Missing{};
  return FromVariant(converted.get());
}

Variant ObjectVariant(IUnknown* object) {
  const ComPtr<IDispatch> dispatch = ComPtr<IUnknown>(object).As<IDispatch>();
  if (!dispatch) return Variant::Missing{};
  return Variant::Object(
      std::make_shared<AutomationLateBoundObject>(DispatchObject(dispatch, "the object")));
}

// A value that is no array, from the place where it lies.
Variant Scalar(VARTYPE type, const void* place) {
  switch (type) {
    case VT_EMPTY:
      return {};
    case VT_BOOL:
      return Read<VARIANT_BOOL>(place) != VARIANT_FALSE;
    case VT_UI1:
      return static_cast<std::int16_t>(Read<BYTE>(place));
    case VT_I2:
      return std::int16_t{Read<SHORT>(place)};
    case VT_I4:
    case VT_INT:
      return std::int32_t{Read<LONG>(place)};
    case VT_R4:
      return double{Read<FLOAT>(place)};
    case VT_R8:
      return Read<DOUBLE>(place);
    case VT_BSTR:
      return TextOf(Read<BSTR>(place));
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return ObjectVariant(Read<IUnknown*>(place));
    default:
      return Variant::Missing{};
  }
}

bool IsOtherNumber(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI2:
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_CY:
    case VT_DECIMAL:
    case VT_DATE:
      return true;
    default:
      return false;
  }
}

Variant ArrayOfDoubles(SAFEARRAY* array, std::size_t most_elements) {
  const ArrayView view(array, VT_R8, 1);
  const std::size_t extent = std::min(view.Extent(1), most_elements);
  const double* first = view.Elements<double>();
  return Variant::DoubleArray(std::vector<double>(first, first + extent), view.Lower(1));
}

// An element as a variant of its own, to be converted like any other value.
Variant ElementAt(const void* place, VARTYPE type) {
  if (type == VT_VARIANT) return FromVariant(Read<VARIANT>(place));
  if (!IsOtherNumber(type)) return Scalar(type, place);
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = static_cast<VARTYPE>(VT_BYREF | type);
  V_BYREF(&reference) = const_cast<void*>(place);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  return FromVariant(reference);
}

Variant ArrayVariant(SAFEARRAY* array, std::size_t most_elements) {
  VARTYPE type = VT_EMPTY;
  if (array == nullptr || SafeArrayGetDim(array) != 1 ||
      FAILED(SafeArrayGetVartype(array, &type)) || type == VT_RECORD) {
    return Variant::Missing{};
  }
  if (type == VT_R8) return ArrayOfDoubles(array, most_elements);
  const ArrayView view(array, type, 1);
  const std::size_t size = SafeArrayGetElemsize(array);
  const auto* place = view.Elements<const char>();
  const std::size_t extent = std::min(view.Extent(1), most_elements);
  std::vector<Variant> elements;
  elements.reserve(extent);
  for (std::size_t i = 0; i < extent; ++i, place += size) {
    elements.push_back(ElementAt(place, type));
  }
  return Variant::Array(std::move(elements), view.Lower(1));
}

OwnedVariant ArrayToVariant(const Variant::Array& array) {
  OwnedVariant variant;
  SAFEARRAYBOUND bound;
  bound.cElements = static_cast<ULONG>(array.size());
  bound.lLbound = array.IsDimensioned() ? array.LBound() : 0;
  const ArrayView view(NewArray(variant, VT_VARIANT, {bound}), VT_VARIANT, 1);
  auto* to = view.Elements<VARIANT>();
  for (const Variant& element : array) *to++ = ToVariant(element).Detach();
  return variant;
}

struct ToVariantVisitor {
  OwnedVariant operator()(std::monostate) const { return {}; }
  OwnedVariant operator()(Variant::Missing) const {
    VARIANT missing;
    VariantInit(&missing);
    V_VT(&missing) = VT_ERROR;
    V_ERROR(&missing) = DISP_E_PARAMNOTFOUND;
    return OwnedVariant(missing);
  }
  OwnedVariant operator()(bool value) const { return OwnedVariant::Of(value); }
  OwnedVariant operator()(std::int16_t value) const {
    VARIANT small;
    VariantInit(&small);
    V_VT(&small) = VT_I2;
    V_I2(&small) = value;
    return OwnedVariant(small);
  }
  OwnedVariant operator()(std::int32_t value) const { return OwnedVariant::Of(value); }
  OwnedVariant operator()(double value) const { return OwnedVariant::Of(value); }
  OwnedVariant operator()(const std::string& text) const {
    return OwnedVariant::Of(std::string_view(text));
  }
  OwnedVariant operator()(const Variant::Object& object) const {
    if (object == nullptr) return OwnedVariant::Of(static_cast<IDispatch*>(nullptr));
    const auto* automation = dynamic_cast<const AutomationLateBoundObject*>(object.get());
    if (automation == nullptr) Raise(RunTimeError::kTypeMismatch);
    return OwnedVariant::Of(automation->get());
  }
  OwnedVariant operator()(const Variant::DoubleArray& array) const {
    return tof::com::ToVariant(array);
  }
  OwnedVariant operator()(const Variant::Array& array) const { return ArrayToVariant(array); }
};

}  // namespace

Variant FromVariant(const VARIANT& value, std::size_t most_elements) {
  const VARIANT& held = Dereferenced(value);
  const VARTYPE type = V_VT(&held);
  if ((type & VT_ARRAY) != 0) return ArrayVariant(ArrayIn(held), most_elements);
  const auto plain = static_cast<VARTYPE>(type & ~VT_BYREF);
  if ((type & VT_BYREF) != 0 && V_BYREF(&held) == nullptr) return Variant::Missing{};
  if (plain == VT_DECIMAL || plain == VT_I1 || plain == VT_UI2) {
    return Converted(held, plain == VT_DECIMAL ? VT_R8 : VT_I4);
  }
  if (IsOtherNumber(plain)) return Converted(held, VT_R8);
  return Scalar(plain, (type & VT_BYREF) != 0 ? V_BYREF(&held) : &V_I4(&held));
}

OwnedVariant ToVariant(const Variant& value) {
  return std::visit(ToVariantVisitor{}, value.value());
}

void StoreInto(VARIANT& variable, OwnedVariant value) {
  VARIANT* last = &variable;
  while (V_VT(last) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(last) != nullptr) {
    last = V_VARIANTREF(last);
  }
  VariantClear(last);
  *last = value.Detach();
}

}  // namespace tof::com
