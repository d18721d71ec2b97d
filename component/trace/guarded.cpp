#include "component/trace/guarded.h"

namespace tof {

std::string ErrorLineText(const Routine& routine, const AutomationError& error) {
  const std::string number = "[" + std::to_string(error.number()) + "]";
  const std::string name(routine.name_in_error_line.empty() ? routine.name
                                                            : routine.name_in_error_line);
  switch (routine.error_line) {
    case ErrorLine::kStandard:
      return "error" + number + " in " + name + "(): " + error.description();
    case ErrorLine::kNameFirst:
      return name + ".Error" + number;
    case ErrorLine::kNumberOnly:
      return "Error" + number + " = " + error.description();
    case ErrorLine::kCapitalized:
      return "Error" + number + " in " + name + "(): " + error.description();
  }
  return {};
}

}  // namespace tof
