#include "component/automation/error.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace tof {

AutomationError::AutomationError(std::int32_t number, std::string description, std::string source)
    : number_(number), description_(std::move(description)), source_(std::move(source)) {}

const char* DescriptionOf(RunTimeError error) {
  switch (error) {
    case RunTimeError::kInvalidCall:
      return "Invalid procedure call or argument";
    case RunTimeError::kOverflow:
      return "Overflow";
    case RunTimeError::kOutOfMemory:
      return "Out of memory";
    case RunTimeError::kSubscriptOutOfRange:
      return "Subscript out of range";
    case RunTimeError::kDivisionByZero:
      return "Division by zero";
    case RunTimeError::kTypeMismatch:
      return "Type mismatch";
    case RunTimeError::kFileNotFound:
      return "File not found";
    case RunTimeError::kPermissionDenied:
      return "Permission denied";
    case RunTimeError::kPathNotFound:
      return "Path not found";
    case RunTimeError::kObjectVariableNotSet:
      return "Object variable or With block variable not set";
    case RunTimeError::kCannotCreateObject:
      return "ActiveX component can't create object";
    case RunTimeError::kAutomationError:
      return "Automation error";
  }
  return "Automation error";
}

void Raise(RunTimeError error) {
  throw AutomationError(static_cast<std::int32_t>(error), DescriptionOf(error));
}

AutomationError CurrentError() {
  const auto of = [](RunTimeError error, const char* text) {
    return AutomationError(static_cast<std::int32_t>(error), text);
  };
  try {
    throw;
  } catch (const AutomationError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return of(RunTimeError::kOutOfMemory, DescriptionOf(RunTimeError::kOutOfMemory));
  } catch (const std::length_error&) {
    // What a container raises for a size that no memory could hold.
    return of(RunTimeError::kOutOfMemory, DescriptionOf(RunTimeError::kOutOfMemory));
  } catch (const std::exception& error) {
    return of(RunTimeError::kAutomationError, error.what());
  } catch (...) {
    return of(RunTimeError::kAutomationError, DescriptionOf(RunTimeError::kAutomationError));
  }
}

}  // namespace tof
