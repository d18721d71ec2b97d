#include "hosts/study/virtual_run.h"

#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <variant>

#include "hosts/cli/calibration_call.h"
#include "hosts/cli/log_folder.h"
#include "hosts/cli/report_builder.h"
#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "instruments/description/description_reader.h"
#include "instruments/standin/instrument.h"
#include "instruments/virtual/transmission.h"

namespace tof::study {
namespace {

namespace fs = std::filesystem;
using description::InstrumentDescription;

constexpr std::uint32_t kHostSeed = 1;

// A folder of the process's own, gone with the object.
class LogFolder {
 public:
  LogFolder() {
    std::string name = (fs::temp_directory_path() / "tof_study_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("no folder for log files can be made in " +
                               fs::temp_directory_path().string());
    }
    path_ = name;
    cli::PrepareLogFolder(name);
  }
  ~LogFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  LogFolder(const LogFolder&) = delete;
  LogFolder& operator=(const LogFolder&) = delete;

  std::string path() const { return path_.string(); }

 private:
  fs::path path_;
};

cli::CalibrationCall CallOf(const VirtualRun& run) {
  cli::CalibrationCall call;
  call.spectra = run.description.run.spectra;
  call.masses = description::CalibrantMasses(run.description);
  call.suppress_aic = run.suppress_aic;
  call.optional.dTradWeighting = run.description.run.trad_weighting;
  call.optional.dPeakFindTimeWindow = run.description.run.peak_window;
  return call;
}

std::vector<MassAtVoltage> MassesOf(const VirtualRun& run, const cli::RunOutcome& outcome) {
  std::vector<MassAtVoltage> masses;
  for (const double mass : outcome.masses) {
    const CalibMassPeakData& peak = outcome.peaks(static_cast<std::int32_t>(masses.size()));
    masses.push_back({mass, peak.Voltage, static_cast<double>(peak.Abundance),
                      ExpectedAbundance(run.description, mass, peak.Voltage)});
  }
  return masses;
}

}  // namespace

VirtualResult Run(const VirtualRun& run) {
  const LogFolder folder;
  InstrumentDescription described = run.description;
  described.base_folder = folder.path();
  const auto clock = std::make_shared<native::VirtualClock>();
  std::ostringstream messages;
  native::VirtualTimeHost host(messages, clock, kHostSeed);
  standin::InstrumentOptions options;
  options.seed = run.seed;
  standin::StandInInstrument instrument(std::move(described), options, host, clock);

  const cli::RunOutcome outcome = cli::Calibrate(CallOf(run), instrument, host);
  VirtualResult result;
  result.report = cli::BuildReport(outcome, instrument, host);
  if (!result.report.ok) {
    throw CalibrationFailed("the calibration with seed " + std::to_string(run.seed) +
                            " failed: " + result.report.status_message);
  }
  if (result.report.aic) result.masses = MassesOf(run, outcome);
  result.drift_ppm =
      instrument.Virtual()->MeanDriftPpm(cli::SpectraCollected(outcome, result.report.aic));
  return result;
}

InstrumentDescription BuiltIn() {
  InstrumentDescription built_in = description::BuiltInDescription();
  built_in.flags.erase("AICLoggingEnabled");  // nobody would read it
  return built_in;
}

void Set(InstrumentDescription& description, const std::string& key, double value) {
  description.settings["Calibration"][key] = value;
}

virtual_instrument::VirtualSourceParameters& SourceOf(InstrumentDescription& description) {
  return std::get<virtual_instrument::VirtualSourceParameters>(description.source);
}

const virtual_instrument::Parameters& PhysicsOf(const InstrumentDescription& description) {
  return std::get<virtual_instrument::VirtualSourceParameters>(description.source).physics;
}

double ExpectedAbundance(const InstrumentDescription& description, double mass, double volts) {
  constexpr double kSameMass = 1e-3;
  const virtual_instrument::Parameters& physics = PhysicsOf(description);
  for (const virtual_instrument::Species& species : physics.calibrants) {
    if (std::abs(species.mass_u - mass) > kSameMass) continue;
    const double ions_per_pulse =
        species.ions_per_pulse *
        virtual_instrument::Transmission(physics.rf_guide, species.mass_u, volts);
    return physics.detector.gain_channels.front().counts_per_ion *
           static_cast<double>(physics.acquisition.pulses_per_spectrum) *
           -std::expm1(-ions_per_pulse);
  }
  return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace tof::study
