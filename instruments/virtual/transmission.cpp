#include "instruments/virtual/transmission.h"

#include <cmath>
#include <numbers>

namespace tof::virtual_instrument {
namespace {

constexpr double kAtomicMassUnitKg = 1.66053906660e-27;  // CODATA 2018
constexpr double kElementaryChargeC = 1.602176634e-19;   // exact in the SI since 2019

double KappaVoltsPerU(const RfGuideParameters& guide) {
  const double omega_r0 =
      2.0 * std::numbers::pi * guide.frequency_hz * 1e-3 * guide.inscribed_radius_mm;
  return kAtomicMassUnitKg * omega_r0 * omega_r0 / kElementaryChargeC;
}

}  // namespace

double WellDepthEv(const RfGuideParameters& guide, double mass_u, double rf_volts) {
  const double n = guide.pole_pairs;
  const double field = n * rf_volts * std::pow(guide.relative_ion_radius, n - 1.0);
  return field * field / (4.0 * mass_u * KappaVoltsPerU(guide));
}

double Adiabaticity(const RfGuideParameters& guide, double mass_u, double rf_volts) {
  const double n = guide.pole_pairs;
  return 2.0 * n * (n - 1.0) * std::abs(rf_volts) * std::pow(guide.relative_ion_radius, n - 2.0) /
         (mass_u * KappaVoltsPerU(guide));
}

double Transmission(const RfGuideParameters& guide, double mass_u, double rf_volts) {
  const double depth_ev = WellDepthEv(guide, mass_u, rf_volts);
  const double kept_by_the_well =
      std::exp(-guide.well_loss_exponent * std::exp(-depth_ev / guide.transverse_energy_ev));
  const double beyond_cutoff = (Adiabaticity(guide, mass_u, rf_volts) - guide.adiabaticity_cutoff) /
                               guide.adiabaticity_cutoff_width;
  return kept_by_the_well / (1.0 + std::exp(beyond_cutoff));
}

}  // namespace tof::virtual_instrument
