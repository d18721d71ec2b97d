#include "component/automation/error.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace tof {
namespace {

struct TextCase {
  std::string name;
  RunTimeError error;
  std::int32_t number;
  std::string description;
};

class RunTimeErrors : public testing::TestWithParam<TextCase> {};

TEST_P(RunTimeErrors, AreRaisedWithTheirNumberTheirUsualTextAndNoSource) {
  try {
    Raise(GetParam().error);
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), GetParam().number);
    EXPECT_EQ(error.description(), GetParam().description);
    EXPECT_EQ(error.source(), "");
    EXPECT_EQ(error.what(), GetParam().description);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Standard, RunTimeErrors,
    testing::Values(
        TextCase{"InvalidCall", RunTimeError::kInvalidCall, 5,
                 "Invalid procedure call or argument"},
        TextCase{"Overflow", RunTimeError::kOverflow, 6, "Overflow"},
        TextCase{"OutOfMemory", RunTimeError::kOutOfMemory, 7, "Out of memory"},
        TextCase{"Subscript", RunTimeError::kSubscriptOutOfRange, 9, "Subscript out of range"},
        TextCase{"DivisionByZero", RunTimeError::kDivisionByZero, 11, "Division by zero"},
        TextCase{"TypeMismatch", RunTimeError::kTypeMismatch, 13, "Type mismatch"},
        TextCase{"FileNotFound", RunTimeError::kFileNotFound, 53, "File not found"},
        TextCase{"PermissionDenied", RunTimeError::kPermissionDenied, 70, "Permission denied"},
        TextCase{"PathNotFound", RunTimeError::kPathNotFound, 76, "Path not found"},
        TextCase{"ObjectNotSet", RunTimeError::kObjectVariableNotSet, 91,
                 "Object variable or With block variable not set"},
        TextCase{"CannotCreateObject", RunTimeError::kCannotCreateObject, 429,
                 "ActiveX component can't create object"},
        TextCase{"AutomationError", RunTimeError::kAutomationError, 440, "Automation error"}),
    [](const auto& one) { return one.param.name; });

TEST(UsualTexts, AreThoseOfTheRunTimeErrorsOfAutomationLanguages) {
  const std::map<std::int32_t, std::string> texts = {
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
  };
  for (const auto& [number, text] : texts) EXPECT_EQ(UsualTextOf(number), text) << number;
  for (const std::int32_t other : {0, 1, 8, 12, 4711, -1, -822}) {
    EXPECT_STREQ(UsualTextOf(other), "Automation error") << other;
  }
}

struct CurrentCase {
  std::string name;
  std::function<void()> raise;
  std::int32_t number;
  std::string description;
  std::string source = {};
};

class ErrorBeingHandled : public testing::TestWithParam<CurrentCase> {};

TEST_P(ErrorBeingHandled, IsAnAutomationErrorWhateverWasThrown) {
  bool thrown = false;
  try {
    GetParam().raise();
  } catch (...) {
    thrown = true;
    const AutomationError error = CurrentError();
    EXPECT_EQ(error.number(), GetParam().number);
    EXPECT_EQ(error.description(), GetParam().description);
    EXPECT_EQ(error.source(), GetParam().source);
  }
  EXPECT_TRUE(thrown);
}

INSTANTIATE_TEST_SUITE_P(
    Thrown, ErrorBeingHandled,
    testing::Values(
        CurrentCase{"OwnErrorWithAllItsFields",
                    [] { throw AutomationError(-822, "no A", "driver"); }, -822, "no A", "driver"},
        CurrentCase{"LowestNumber",
                    [] { throw AutomationError(std::numeric_limits<std::int32_t>::min(), ""); },
                    std::numeric_limits<std::int32_t>::min(), "Automation error"},
        CurrentCase{"KnownNumberWithoutAText", [] { throw AutomationError(13, "", "the parser"); },
                    13, "Type mismatch", "the parser"},
        CurrentCase{"FullDiskWithoutAText", [] { throw AutomationError(61, ""); }, 61, "Disk full"},
        CurrentCase{"UnknownNumberWithoutAText", [] { throw AutomationError(5000, ""); }, 5000,
                    "Automation error"},
        CurrentCase{"NoNumber", [] { throw AutomationError(0, "the door is open", "the pump"); },
                    440, "the door is open", "the pump"},
        CurrentCase{"NeitherNumberNorText", [] { throw AutomationError(0, ""); }, 440,
                    "Automation error"},
        CurrentCase{"RunTimeError", [] { Raise(RunTimeError::kTypeMismatch); }, 13,
                    "Type mismatch"},
        CurrentCase{"ExhaustedMemory", [] { throw std::bad_alloc(); }, 7, "Out of memory"},
        CurrentCase{"SizeOfNoMemory", [] { throw std::length_error("vector"); }, 7,
                    "Out of memory"},
        CurrentCase{"OtherException", [] { throw std::runtime_error("the pump is off"); }, 440,
                    "the pump is off"},
        CurrentCase{"NoException", [] { throw 5; }, 440, "Automation error"}),
    [](const auto& one) { return one.param.name; });

TEST(ErrorBeingHandledNow, IsTheInnerOneInsideANestedHandler) {
  try {
    Raise(RunTimeError::kOverflow);
  } catch (...) {
    try {
      Raise(RunTimeError::kPathNotFound);
    } catch (...) {
      EXPECT_EQ(CurrentError().number(), 76);
    }
    EXPECT_EQ(CurrentError().number(), 6);
  }
}

}  // namespace
}  // namespace tof
