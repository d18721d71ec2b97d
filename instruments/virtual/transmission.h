// How much of a kind of ion the RF ion guide passes on.
#pragma once

#include "instruments/virtual/parameters.h"

namespace tof::virtual_instrument {

// Depth in eV of the effective potential of a 2n-pole at the ions' turning radius x = r / r0:
//   D = n^2 V^2 x^(2n-2) / (4 m kappa),  kappa = u (2 pi f)^2 r0^2 / e  (in V per u).
// Source: D. Gerlich, "Inhomogeneous RF fields: a versatile tool for the study of processes with
// slow ions", Adv. Chem. Phys. 82, 1 (1992). `rf_volts` is the amplitude V.
double WellDepthEv(const RfGuideParameters& guide, double mass_u, double rf_volts);

// Gerlich's adiabaticity parameter there; a light ion at a high voltage no longer follows the mean
// field when it passes about 0.3 to 0.4:  eta = 2 n (n-1) V x^(n-2) / (m kappa).
double Adiabaticity(const RfGuideParameters& guide, double mass_u, double rf_volts);

// Fraction passed on, 0 to 1:
//   T = exp(-K exp(-D / eps)) / (1 + exp((eta - eta_c) / d_eta)).
// D and eta are physics; the two outer forms are not: they were chosen to rise with the well and to
// fall smoothly at the limit of stability. The sign of `rf_volts` does not matter.
double Transmission(const RfGuideParameters& guide, double mass_u, double rf_volts);

}  // namespace tof::virtual_instrument
