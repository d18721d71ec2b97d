// Floating-point arithmetic whose faults are errors.
#pragma once

namespace tof {

// x / 0 is error 11, 0 / 0 error 6, a quotient of finite numbers beyond the doubles error 6.
double Divide(double dividend, double divisor);

// A product of finite numbers beyond the doubles is error 6.
double Multiply(double a, double b);

// The square root of a negative number is error 5.
double SquareRoot(double value);

}  // namespace tof
