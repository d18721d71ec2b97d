// Instrument software on its way: one collaborator of its own, the rest borrowed from the stand-in,
// until they are written too. It must pass the conformance suite and calibrate.
#include <iostream>
#include <utility>

#include "component/calibrator/tof_calibrator.h"
#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "instruments/conformance/suite.h"
#include "instruments/description/description_reader.h"
#include "instruments/standin/instrument.h"

namespace {

// Has everything calibrated in the traditional way, whatever the instrument's own flag says.
class TraditionalFlags : public tof::TuneFlags {
 public:
  TraditionalFlags(std::shared_ptr<tof::TuneFlags> rest, std::string aic_key)
      : rest_(std::move(rest)), aic_key_(std::move(aic_key)) {}
  std::string GetFlag(const std::string& key, std::int32_t minus_one) override {
    return key == aic_key_ ? "Yes" : rest_->GetFlag(key, minus_one);
  }

 private:
  std::shared_ptr<tof::TuneFlags> rest_;
  std::string aic_key_;
};

class OwnInstrument : public tof::standin::StandInInstrument {
 public:
  using StandInInstrument::StandInInstrument;
  std::shared_ptr<tof::TuneFlags> CreateTuneFlags() override {
    return std::make_shared<TraditionalFlags>(StandInInstrument::CreateTuneFlags(),
                                              CreateDataDictionary()->GetFlagKey());
  }
};

struct PrintStatus : tof::StatusEvents {
  void evtNewStatus(std::int32_t number, const std::string& message) override {
    std::cerr << "calibration failed: [" << number << "] " << message << '\n';
  }
};

bool PassesTheSuite(OwnInstrument& instrument, tof::HostServices& host) {
  bool passes = true;
  for (const auto& result : tof::conformance::RunChecks({.factory = instrument,
                            .host = host,
                            .abort = {.ask = [&] { instrument.RequestAbort(); },
                                     .withdraw = [&] { instrument.WithdrawAbort(); }}})) {
    if (result.outcome != tof::conformance::Outcome::kFail) continue;
    passes = false;
    std::cerr << result.id << ": expected " << result.expected << ", found " << result.found
              << '\n';
  }
  return passes;
}

bool Calibrates(OwnInstrument& instrument, tof::HostServices& host) {
  PrintStatus events;
  tof::TofCalibrator calibrator(instrument, host, events);
  std::int16_t spectra = 3;
  const tof::Variant masses =
      tof::Variant::DoubleArray({90.97664, 158.96407, 226.95149, 498.90119, 906.82573, 1450.72512});
  tof::Variant flight_times;
  bool suppress_aic = false;
  const auto coefficients =
      calibrator.calibrateTOFMassAxis(spectra, masses, flight_times, suppress_aic);
  if (coefficients == nullptr) return false;
  std::cout << "m/z at 40 us: " << coefficients->TimeToMass(40000.0) << '\n';
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  auto description = tof::description::BuiltInDescription();
  description.base_folder = argc > 1 ? argv[1] : ".";
  const auto clock = std::make_shared<tof::native::VirtualClock>();
  tof::native::VirtualTimeHost host(std::cerr, clock, 1);
  OwnInstrument instrument(description, {}, host, clock);
  return PassesTheSuite(instrument, host) && Calibrates(instrument, host) ? 0 : 1;
}
