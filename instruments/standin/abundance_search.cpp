#include "instruments/standin/abundance_search.h"

#include <string>

#include "component/automation/error.h"
#include "instruments/standin/instrument_access.h"

namespace tof::standin {
namespace {

void SetAndSettle(InstrumentState& state, const spectra::AbundanceControl& control, double volts) {
  WriteSetpoint(state, control.setpoint, ValueType::kDouble, Variant(volts));
  state.clock->Advance(control.settling_sec);
}

}  // namespace

double SearchOnInstrument(InstrumentState& state, const char* searcher,
                          const AbundanceIn& abundance_in, const AbundanceBand& band,
                          const VoltageRange& range) {
  const std::optional<spectra::AbundanceControl> control = state.source->Control();
  if (!control) {
    throw AutomationError(445, "The " + std::string(searcher) +
                                   " of this instrument has no search for a target abundance: its "
                                   "spectra depend on no setpoint");
  }
  const auto abundance_at = [&](double volts) {
    SetAndSettle(state, *control, volts);
    return abundance_in(*AcquireSpectrum(state));
  };
  const double volts = FindVoltageInBand(abundance_at, band, range);
  SetAndSettle(state, *control, volts);
  return volts;
}

}  // namespace tof::standin
