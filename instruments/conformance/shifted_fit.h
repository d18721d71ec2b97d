// Coefficients that differ from those in force, made in the one way that the interface offers: by a
// fit to flight times that follow t = t0 + sqrt(m) / A.
#pragma once

#include "component/automation/bounded_array.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {

struct ExactCalibrants {
  double a_per_ns = 0.0;
  double t0_ns = 0.0;
  BoundedArray<double> masses;    // m/z
  BoundedArray<double> times_ns;  // spread over the acquisition window
};

// A and t0 are those of the coefficients in force, shifted by 200 ppm and 2 ns.
ExactCalibrants ShiftedCalibrants(Subject& subject);

// Has A and t0 alone fitted, no higher terms.
void FitAAndT0(MassCalCoefficients& coefficients, const ExactCalibrants& calibrants);

// Each raises Unmet unless it holds of coefficients that were fitted to these calibrants.
void RequireCalibrantsMet(MassCalCoefficients& coefficients, const ExactCalibrants& calibrants);
void RequireAAndT0InRecord(MassCalCoefficients& coefficients, const ExactCalibrants& calibrants);

// A copy of the coefficients in force, fitted to shifted calibrants. NotApplicable where the fit
// fails, which other checks are about.
std::shared_ptr<MassCalCoefficients> ShiftedCoefficients(Subject& subject);

}  // namespace tof::conformance
