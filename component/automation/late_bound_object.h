// An object of another component that is called by name.
#pragma once

#include <string_view>
#include <vector>

#include "component/automation/variant.h"

namespace tof {

// Every operation raises an AutomationError: 438 for a name that the object does not have, or the
// object's own error.
class LateBoundObject {
 public:
  virtual ~LateBoundObject() = default;
  virtual Variant GetProperty(std::string_view name) = 0;
  virtual void PutProperty(std::string_view name, const Variant& value) = 0;
  virtual Variant Call(std::string_view method, const std::vector<Variant>& arguments) = 0;
};

}  // namespace tof
