#pragma once

#include <memory>
#include <vector>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// Looks for peaks where the starting coefficients expect them, or those in force when there are
// none. What the peak finder refuses is error 5 with its text.
class StandInSpecParser : public SpecParser {
 public:
  explicit StandInSpecParser(std::shared_ptr<InstrumentState> state) : state_(std::move(state)) {}

  // Row 0: flight time, peak width in ns (byte 48), abundance. Row 1: the mass that the
  // coefficients assign (byte 24), its error in ppm (byte 32), abundance.
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses,
                                              double peak_find_window) override;
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override;
  // In ascending flight time. A negative number of peaks is error 5.
  void FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override;
  // AIC needs spectra that setpoints change. The width is left alone.
  bool ShouldAvoidAIC(const Variant& masses, double& peak_find_width) override;
  // Searches between the settings of the RF voltages for the settings' band, times the scale
  // factor, as SearchOnInstrument does; `tolerance`, in volts, is where it stops dividing an
  // interval.
  void SearchTargetAbundance(double mass, double tolerance) override;

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
