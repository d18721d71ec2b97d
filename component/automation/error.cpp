#include "component/automation/error.h"

#include <array>
#include <new>
#include <stdexcept>
#include <utility>

namespace tof {
namespace {

struct UsualText {
  std::int32_t number;
  const char* text;
};

// The run-time errors that collaborators, files and automation itself raise, with their texts.
constexpr std::array<UsualText, 31> kUsualTexts{{
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {7, "Out of memory"},
    {9, "Subscript out of range"},
    {11, "Division by zero"},
    {13, "Type mismatch"},
    {52, "Bad file name or number"},
    {53, "File not found"},
    {54, "Bad file mode"},
    {55, "File already open"},
    {57, "Device I/O error"},
    {58, "File already exists"},
    {61, "Disk full"},
    {62, "Input past end of file"},
    {67, "Too many files"},
    {68, "Device unavailable"},
    {70, "Permission denied"},
    {71, "Disk not ready"},
    {75, "Path/File access error"},
    {76, "Path not found"},
    {91, "Object variable or With block variable not set"},
    {94, "Invalid use of Null"},
    {424, "Object required"},
    {429, "ActiveX component can't create object"},
    {430, "Class doesn't support Automation"},
    {438, "Object doesn't support this property or method"},
    {440, "Automation error"},
    {445, "Object doesn't support this action"},
    {448, "Named argument not found"},
    {449, "Argument not optional"},
    {450, "Wrong number of arguments or invalid property assignment"},
}};

AutomationError Of(RunTimeError error, std::string text) {
  return {static_cast<std::int32_t>(error), std::move(text)};
}

// A text short enough to need no memory of its own.
AutomationError OutOfMemory() {
  return Of(RunTimeError::kOutOfMemory, "Out of memory");
}

// The exception now being handled, with the number and the text that it brings.
AutomationError CaughtError() {
  try {
    throw;
  } catch (const AutomationError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  } catch (const std::length_error&) {
    // What a container raises for a size that no memory could hold.
    return OutOfMemory();
  } catch (const std::exception& error) {
    return Of(RunTimeError::kAutomationError, error.what());
  } catch (...) {
    return Of(RunTimeError::kAutomationError, {});
  }
}

AutomationError Completed(AutomationError error) {
  constexpr auto kNoNumber = static_cast<std::int32_t>(RunTimeError::kAutomationError);
  const std::int32_t number = error.number() == 0 ? kNoNumber : error.number();
  if (number == error.number() && !error.description().empty()) return error;
  return {number, error.description().empty() ? UsualTextOf(number) : error.description(),
          error.source()};
}

}  // namespace

AutomationError::AutomationError(std::int32_t number, std::string description, std::string source)
    : number_(number), description_(std::move(description)), source_(std::move(source)) {}

const char* DescriptionOf(RunTimeError error) {
  return UsualTextOf(static_cast<std::int32_t>(error));
}

const char* UsualTextOf(std::int32_t number) {
  for (const UsualText& usual : kUsualTexts) {
    if (usual.number == number) return usual.text;
  }
  return "Automation error";
}

void Raise(RunTimeError error) {
  throw AutomationError(static_cast<std::int32_t>(error), DescriptionOf(error));
}

AutomationError CurrentError() noexcept {
  try {
    return Completed(CaughtError());
  } catch (...) {
    // Not even the error's text could be copied.
    return OutOfMemory();
  }
}

}  // namespace tof
