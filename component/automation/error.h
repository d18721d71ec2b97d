// The error object of the automation rules: a number, a source and a description.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace tof {

// What a failing routine or collaborator raises. `number` is 32-bit signed; `source` is often
// empty.
class AutomationError : public std::exception {
 public:
  AutomationError(std::int32_t number, std::string description, std::string source = {});

  std::int32_t number() const noexcept { return number_; }
  const std::string& description() const noexcept { return description_; }
  const std::string& source() const noexcept { return source_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::int32_t number_;
  std::string description_;
  std::string source_;
};

// The standard run-time errors that checked conversions, arithmetic and array accesses raise.
enum class RunTimeError : std::int32_t {
  kInvalidCall = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kSubscriptOutOfRange = 9,
  kDivisionByZero = 11,
  kTypeMismatch = 13,
  kFileNotFound = 53,
  kPermissionDenied = 70,
  kPathNotFound = 76,
  kObjectVariableNotSet = 91,
  kCannotCreateObject = 429,
  kAutomationError = 440,
};

// The usual text of a run-time error, e.g. "Type mismatch".
const char* DescriptionOf(RunTimeError error);

// The same by number, for every number that automation has a text of its own for; "Automation
// error" for any other.
const char* UsualTextOf(std::int32_t number);

[[noreturn]] void Raise(RunTimeError error);

// The exception now being handled, as an automation error: itself when it is one, 7 for exhausted
// memory, 440 with its own text for any other. One without a text gets the usual text of its
// number; 0, which is the number of no error and which a host would read as success, becomes 440.
// Call it from a catch block only.
AutomationError CurrentError() noexcept;

}  // namespace tof
