// One thing that the calibrator relies on, and how a check of it ends.
#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace tof::conformance {

struct Subject;

struct Check {
  std::string_view collaborator;  // the interface that is called
  std::string_view name;          // unique within the collaborator
  std::string_view relied_on;     // what and why, for the engineer who supplies the collaborator

  // Returns when the collaborator does what is relied on. Raises Unmet when it does not and
  // NotApplicable when that can't be told; anything else that is raised counts as unmet.
  void (*run)(Subject& subject);
};

// "Collaborator.name", by which a check is known from version to version.
std::string IdOf(const Check& check);

struct Unmet : std::exception {
  Unmet(std::string expected_text, std::string found_text);
  std::string expected;
  std::string found;
};

struct NotApplicable : std::exception {
  explicit NotApplicable(std::string why_not);
  std::string why;
};

// Raises Unmet unless it holds.
void Require(bool holds, const std::string& expected, const std::string& found);

// Raises Unmet unless the two differ by `tolerance` at most; NaN never does.
void RequireNear(const std::string& what, double found, double expected, double tolerance);

}  // namespace tof::conformance
