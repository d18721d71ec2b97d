// The variant of the automation rules: the value that crosses the public interface and the
// collaborators' interfaces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>

#include "component/automation/bounded_array.h"

namespace tof {

class LateBoundObject;

class Variant {
 public:
  // An optional argument that the caller left out; unlike Empty it converts to nothing.
  struct Missing {
    friend bool operator==(Missing, Missing) = default;
  };
  using Array = BoundedArray<Variant>;
  using DoubleArray = BoundedArray<double>;
  using Object = std::shared_ptr<LateBoundObject>;
  using Value = std::variant<std::monostate, Missing, bool, std::int16_t, std::int32_t, double,
                             std::string, Object, DoubleArray, Array>;

  Variant() = default;  // Empty
  // Implicit on purpose: a caller passes a plain value wherever a variant is expected.
  // NOLINTBEGIN(google-explicit-constructor)
  Variant(Missing value) : value_(value) {}
  Variant(bool value) : value_(value) {}
  Variant(std::int16_t value) : value_(value) {}
  Variant(std::int32_t value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  // Any other pointer would silently become True.
  template <class T>
  Variant(const T*) = delete;
  Variant(std::nullptr_t) = delete;
  Variant(Object value) : value_(std::move(value)) {}
  Variant(DoubleArray value) : value_(std::move(value)) {}
  Variant(Array value) : value_(std::move(value)) {}
  // NOLINTEND(google-explicit-constructor)

  bool IsEmpty() const noexcept { return std::holds_alternative<std::monostate>(value_); }
  bool IsArray() const noexcept {
    return std::holds_alternative<DoubleArray>(value_) || std::holds_alternative<Array>(value_);
  }

  // The value when the variant holds exactly that type, else nullptr.
  template <class T>
  const T* As() const noexcept {
    return std::get_if<T>(&value_);
  }
  const Value& value() const noexcept { return value_; }

  friend bool operator==(const Variant& a, const Variant& b) { return a.value_ == b.value_; }

 private:
  Value value_;
};

}  // namespace tof
