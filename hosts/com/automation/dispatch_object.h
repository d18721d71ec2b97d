// An object of another component, called through IDispatch by name.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/automation/late_bound_object.h"
#include "hosts/com/automation/owned_variant.h"

namespace tof::com {

class DispatchObject {
 public:
  // `what` names the object in errors, e.g. "the spectrum parser". Error 91 for no object.
  DispatchObject(ComPtr<IDispatch> object, std::string what);

  // Calls a method with arguments in the order of its declaration: int32, double, bool, text,
  // objects and OwnedVariants. The called object's error is raised as it is; a name that it does
  // not have is error 438.
  template <class... Arguments>
  OwnedVariant Call(std::string_view method, Arguments&&... arguments) {
    std::array<OwnedVariant, sizeof...(Arguments)> owned{
        Argument(std::forward<Arguments>(arguments))...};
    return Invoke(method, DISPATCH_METHOD, owned.data(), owned.size());
  }
  OwnedVariant CallWith(std::string_view method, std::vector<OwnedVariant> arguments) {
    return Invoke(method, DISPATCH_METHOD, arguments.data(), arguments.size());
  }
  OwnedVariant GetProperty(std::string_view name);
  void PutProperty(std::string_view name, OwnedVariant value);

  IDispatch* get() const { return object_.get(); }

 private:
  static OwnedVariant Argument(OwnedVariant&& value) { return std::move(value); }
  template <class T>
  static OwnedVariant Argument(const T& value) {
    return OwnedVariant::Of(value);
  }
  OwnedVariant Invoke(std::string_view name, WORD kind, OwnedVariant* arguments, std::size_t count);
  DISPID IdOf(std::string_view name);

  ComPtr<IDispatch> object_;
  std::string what_;
  std::vector<std::pair<std::string, DISPID>> ids_;  // asked for so far; an object has few names
};

// The same as the component sees it.
class AutomationLateBoundObject : public LateBoundObject {
 public:
  explicit AutomationLateBoundObject(DispatchObject object) : object_(std::move(object)) {}

  Variant GetProperty(std::string_view name) override;
  void PutProperty(std::string_view name, const Variant& value) override;
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override;

  IDispatch* get() const { return object_.get(); }

 private:
  DispatchObject object_;
};

// A new object of a class, on this thread's apartment. `what` names it in errors: 429 with the
// class when it is not registered, else the class's own error.
DispatchObject CreateDispatchObject(REFCLSID class_id, const std::string& what);
DispatchObject CreateDispatchObject(const std::string& prog_id);

}  // namespace tof::com
