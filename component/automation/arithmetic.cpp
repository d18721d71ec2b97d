#include "component/automation/arithmetic.h"

#include <cmath>

#include "component/automation/error.h"

namespace tof {
namespace {

double Checked(double result, double a, double b) {
  const bool overflown = std::isinf(result) && std::isfinite(a) && std::isfinite(b);
  const bool undefined = std::isnan(result) && !std::isnan(a) && !std::isnan(b);
  if (overflown || undefined) Raise(RunTimeError::kOverflow);
  return result;
}

}  // namespace

double Add(double a, double b) {
  return Checked(a + b, a, b);
}

double Subtract(double a, double b) {
  return Checked(a - b, a, b);
}

double Multiply(double a, double b) {
  return Checked(a * b, a, b);
}

double Divide(double dividend, double divisor) {
  if (divisor == 0.0) {
    Raise(dividend == 0.0 ? RunTimeError::kOverflow : RunTimeError::kDivisionByZero);
  }
  return Checked(dividend / divisor, dividend, divisor);
}

double SquareRoot(double value) {
  if (value < 0.0) Raise(RunTimeError::kInvalidCall);
  return std::sqrt(value);
}

}  // namespace tof
