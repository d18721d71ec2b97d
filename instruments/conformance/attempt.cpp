#include "instruments/conformance/attempt.h"

namespace tof::conformance {

void RequireNumberAndText(const std::optional<RaisedError>& error) {
  if (!error) throw NotApplicable("no error was raised, which another check is about");
  Require(error->number != 0, "an AutomationError with a number other than 0",
          "number 0, \"" + error->text + "\"");
  Require(!error->text.empty(), "a text that says what is wrong",
          "error " + std::to_string(error->number) + " without a text");
}

}  // namespace tof::conformance
