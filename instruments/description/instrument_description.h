// An instrument as one XML file describes it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "component/automation/variant.h"
#include "component/calibrator/collaborators.h"
#include "component/calibrator/mass_time_library.h"
#include "instruments/masstime/fit.h"
#include "instruments/peaks/peak_finder.h"
#include "instruments/recorded/recorded_files.h"
#include "instruments/virtual/virtual_source.h"

namespace tof::description {

struct Setpoint {
  ValueType type = ValueType::kDouble;
  Variant value;  // of that type
};

// The stretch of the flight-time axis that is recorded, in microseconds, and what goes with it.
struct Acquisition {
  std::int32_t start_us = 0;
  std::int32_t end_us = 0;
  double time_s = 0.0;        // what the instrument answers when it is asked for its time
  double scale_factor = 1.0;  // multiplies the settings of the abundance band
};

// A time in which the instrument is not ready, on its own clock.
struct NotReadyTime {
  double from_sec = 0.0;
  double to_sec = 0.0;  // ready again from here on
};

// The named values that say whether the instrument is ready: it is when `nrdystate` is not negative
// and `runstate` is 2.
struct Status {
  std::int32_t nrdystate = 0;
  std::int32_t runstate = 2;
  std::vector<NotReadyTime> not_ready = {};  // `nrdystate` reads -1 then, whatever it is otherwise
};

// What a calibration is called with unless the user says otherwise.
struct RunDefaults {
  std::int16_t spectra = 10;
  double trad_weighting = -1.0;  // -1: not given
  double peak_window = -1.0;     // per cent of the flight time; -1: taken from the settings
};

struct InstrumentDescription {
  std::string name;
  std::string configuration;  // suffix of the tune-specific settings
  std::string mode;
  bool mode_uses_rf_setpoints = true;  // 190 and 191; else the single setpoint 101
  std::string base_folder = ".";       // log files go to its folder Logfiles

  Acquisition acquisition;
  Status status;
  peaks::FinderOptions finder;
  RunDefaults run;

  std::map<std::string, std::map<std::string, double>> settings;  // by section and key
  std::string aic_flag_key;                  // the flag whose value "No" allows AIC
  std::map<std::string, std::string> flags;  // by key
  std::map<std::int32_t, Setpoint> setpoints;
  std::map<std::int32_t, std::int32_t> setpoint_aliases;  // further ids of setpoints

  CoefficientRecord factory_coefficients{};                // in force at the start
  masstime::Weighting trad_weighting{};                    // of a fit of A and t0 alone
  masstime::Weighting poly_weighting{};                    // of a fit with higher terms
  std::optional<CoefficientRecord> default_coefficients;   // loaded when a calibration went wrong
  std::map<std::int32_t, std::vector<double>> calibrants;  // m/z, by the value of setpoint 117

  std::variant<virtual_instrument::VirtualSourceParameters, recorded::RecordedFiles> source;
};

// The setpoint whose value selects the calibrant list.
inline constexpr std::int32_t kCalibrantListSetpoint = 117;

// The id under which a setpoint is kept: what `id` is an alias of, else `id` itself.
std::int32_t OwnSetpointId(const InstrumentDescription& description, std::int32_t id);

// The calibrant list that the present value of setpoint 117 selects; empty when there is none.
std::vector<double> CalibrantMasses(const InstrumentDescription& description);

}  // namespace tof::description
