// The calibrator with the standard library alone: an instrument that is switched off and a host
// that has nothing to offer. Creating the calibrator raises what the instrument said.
#include <iostream>
#include <stdexcept>

#include "component/automation/error.h"
#include "component/calibrator/tof_calibrator.h"
#include "instruments/conformance/suite.h"

namespace {

[[noreturn]] void SwitchedOff() {
  throw tof::AutomationError(4711, "the instrument is off");
}

class InstrumentThatIsOff : public tof::InstrumentFactory {
 public:
  std::shared_ptr<tof::DataDictionary> CreateDataDictionary() override { SwitchedOff(); }
  std::shared_ptr<tof::AcqController> CreateAcqController() override { SwitchedOff(); }
  std::shared_ptr<tof::SpecParser> CreateSpecParser() override { SwitchedOff(); }
  std::shared_ptr<tof::CalibLogFiles> CreateCalibLogFiles() override { SwitchedOff(); }
  std::shared_ptr<tof::TuneFlags> CreateTuneFlags() override { SwitchedOff(); }
  std::shared_ptr<tof::CalibSettings> CreateCalibSettings() override { SwitchedOff(); }
  std::shared_ptr<tof::InstrumentPaths> GetInstrumentPaths() override { SwitchedOff(); }
  std::shared_ptr<tof::FirmwareLibrary> GetFirmwareLibrary() override { SwitchedOff(); }
  std::shared_ptr<tof::PeakList> CreatePeakList() override { SwitchedOff(); }
  std::shared_ptr<tof::MassCalCoefficients> CreateMassCalCoefficients() override { SwitchedOff(); }
};

class PlainHost : public tof::HostServices {
 public:
  void Sleep(std::int32_t) override {}
  void ProcessPendingMessages() override {}
  tof::DateTime Now() override { return {}; }
  std::string DateTimeText(const tof::DateTime& moment) override { return tof::DateText(moment); }
  std::uint32_t RandomSeed() override { return 1; }
  void ShowMessageBox(const std::string& text) override { std::cerr << text << '\n'; }
  std::shared_ptr<tof::FileSystem> CreateFileSystem() override {
    throw std::logic_error("no calibration, no file");
  }
  std::shared_ptr<tof::LateBoundObject> CreateObject(const std::string&) override {
    throw tof::AutomationError(429, "not registered");
  }
};

struct NoEvents : tof::StatusEvents {
  void evtNewStatus(std::int32_t, const std::string&) override {}
};

}  // namespace

int main() {
  std::cout << tof::conformance::AllChecks().size() << " checks of an instrument\n";
  InstrumentThatIsOff instrument;
  PlainHost host;
  NoEvents events;
  try {
    const tof::TofCalibrator calibrator(instrument, host, events);
  } catch (const tof::AutomationError& error) {
    std::cout << error.number() << ' ' << error.description() << '\n';
    return error.number() == 4711 ? 0 : 1;
  }
  std::cerr << "a calibrator without an instrument\n";
  return 1;
}
