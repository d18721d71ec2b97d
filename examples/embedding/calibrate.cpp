// The calibrator in a program of one's own: here on the built-in virtual instrument, whose place
// the instrument's own collaborators take.
#include <iostream>

#include "component/calibrator/tof_calibrator.h"
#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "instruments/description/description_reader.h"
#include "instruments/standin/instrument.h"

// [readme]
struct PrintStatus : tof::StatusEvents {
  void evtNewStatus(std::int32_t number, const std::string& message) override {
    std::cerr << "calibration failed: [" << number << "] " << message << '\n';
  }
};

int Calibrate(tof::InstrumentFactory& instrument, tof::HostServices& host) {
  PrintStatus events;
  tof::TofCalibrator calibrator(instrument, host, events);  // raises tof::AutomationError

  std::int16_t spectra = 10;
  const tof::Variant masses =
      tof::Variant::DoubleArray{90.97664, 226.95149, 498.90119, 906.82573, 1450.72512};
  tof::Variant flight_times;
  bool suppress_aic = false;
  const auto coefficients =
      calibrator.calibrateTOFMassAxis(spectra, masses, flight_times, suppress_aic);
  if (coefficients == nullptr) return 1;  // the event has said why
  std::cout << "m/z at 40 us: " << coefficients->TimeToMass(40000.0) << '\n';
  return 0;
}
// [readme]

int main(int argc, char** argv) {
  auto description = tof::description::BuiltInDescription();
  description.base_folder = argc > 1 ? argv[1] : ".";
  const auto clock = std::make_shared<tof::native::VirtualClock>();
  tof::native::VirtualTimeHost host(std::cerr, clock, 1);
  tof::standin::StandInInstrument instrument(description, {}, host, clock);
  return Calibrate(instrument, host);
}
