// A VARIANT that is cleared with its owner.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "hosts/com/automation/com_ptr.h"
#include "hosts/com/automation/text.h"
#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&value_); }
  // Takes over what `value` owns.
  explicit OwnedVariant(const VARIANT& value) : value_(value) {}
  OwnedVariant(OwnedVariant&& other) noexcept : value_(other.Detach()) {}
  OwnedVariant& operator=(OwnedVariant other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~OwnedVariant() { VariantClear(&value_); }

  // Arguments of a call. Those by reference refer to the caller's variable.
  static OwnedVariant Of(std::int32_t value);
  static OwnedVariant Of(double value);
  static OwnedVariant Of(bool value);
  static OwnedVariant Of(std::string_view text);
  static OwnedVariant Of(const char* text) { return Of(std::string_view(text)); }  // not a boolean
  static OwnedVariant Of(IDispatch* object);  // adds a reference; none is Nothing
  static OwnedVariant ByRef(LONG& value);
  static OwnedVariant ByRef(double& value);
  static OwnedVariant ByRef(BSTR& value);
  static OwnedVariant ByRef(IDispatch*& value);
  static OwnedVariant ByRef(VARIANT& value);

  const VARIANT& get() const { return value_; }
  // For a function that stores into a variant without clearing it.
  VARIANT* Out() {
    VariantClear(&value_);
    return &value_;
  }
  VARIANT Detach() {
    VARIANT value = value_;
    VariantInit(&value_);
    return value;
  }

 private:
  VARIANT value_;
};

// The variant itself or, behind any chain of references to variants, the last of them.
const VARIANT& Dereferenced(const VARIANT& value);

// `from` as a value of another type, as Windows converts it.
HRESULT ChangeType(OwnedVariant& to, const VARIANT& from, LCID locale, VARTYPE type);

// The object that a variant holds, by reference too: none for Nothing and Empty, error 13 for
// anything that is no object.
ComPtr<IDispatch> ObjectIn(const VARIANT& value);

}  // namespace tof::com
