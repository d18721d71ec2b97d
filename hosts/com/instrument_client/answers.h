// What an instrument's objects answer, as the component's types. Error 13 for an answer of another
// type.
#pragma once

#include <cstdint>
#include <string>

#include "component/automation/convert.h"
#include "hosts/com/automation/variant_conversion.h"

namespace tof::com {

inline double DoubleIn(const OwnedVariant& answer) {
  return ToDouble(FromVariant(answer.get()));
}
inline std::int32_t Int32In(const OwnedVariant& answer) {
  return ToInt32(FromVariant(answer.get()));
}
inline std::string TextIn(const OwnedVariant& answer) {
  return ToText(FromVariant(answer.get()));
}
inline bool BoolIn(const OwnedVariant& answer) {
  return ToBool(FromVariant(answer.get()));
}

}  // namespace tof::com
