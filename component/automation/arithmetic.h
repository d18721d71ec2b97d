// Floating-point arithmetic whose faults are errors.
//
// A result of finite numbers that is beyond the doubles is error 6, and so is one that is not a
// number although both operands are (0 x infinity, infinity - infinity). An operand that is not a
// number is no fault: it marks a value that is missing, and the result is missing, too.
#pragma once

namespace tof {

double Add(double a, double b);
double Subtract(double a, double b);
double Multiply(double a, double b);

// x / 0 is error 11, 0 / 0 error 6.
double Divide(double dividend, double divisor);

// The square root of a negative number is error 5.
double SquareRoot(double value);

}  // namespace tof
