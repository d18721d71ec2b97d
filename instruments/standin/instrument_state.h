// What the collaborators of one instrument share.
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>

#include "component/calibrator/host_services.h"
#include "instruments/description/instrument_description.h"
#include "instruments/masstime/mass_time_model.h"
#include "instruments/spectra/instrument_clock.h"
#include "instruments/spectra/spectrum_source.h"
#include "instruments/standin/instrument_observer.h"
#include "instruments/standin/operation_gate.h"

namespace tof::standin {

// Where a fit begins, as the calibrator estimated it.
struct StartingValues {
  double a_per_ns = 0.0;
  double t0_ns = 0.0;
};

// Coefficients with the record that travels with them.
struct Calibration {
  CoefficientRecord coefficients{};
  CalInfo info;
};

// What an instrument did, its own searches included.
struct Counters {
  std::int64_t spectra = 0;  // acquired; a look at the newest one isn't counted
  std::int64_t setpoint_writes = 0;
  std::int64_t setpoint_reads = 0;
};

struct InstrumentState {
  // Never written after the instrument was made.
  description::InstrumentDescription description;
  HostServices& host;
  std::shared_ptr<spectra::InstrumentClock> clock;
  std::shared_ptr<spectra::SpectrumSource> source;
  InstrumentObserver* observer = nullptr;  // none: nobody wants to know

  // When the user asks for an abort, on the instrument's clock.
  // Written by: the host.  Read by: AcqController.IsAbortRequested.
  double abort_after_sec = std::numeric_limits<double>::infinity();

  // Written by: every operation, first thing; the host, for planned failures.  Read by: the host,
  // for its report.
  OperationGate gate;

  // Written by: the accesses (instrument_access.h).  Read by: the host, for its report.
  Counters counters = {};

  // Written by: the accesses, for the setpoint table and the searches.  Read by: the setpoint
  // table, the acquisition controller, the host.
  std::map<std::int32_t, description::Setpoint> setpoints;

  // Written by: AcqController.SetCalibCoefficients, which ends the starting values.
  // Read by: the acquisition controller; the parser, to know where peaks are.
  Calibration in_force;

  // Written by: AcqController.SetLikelyAAndT0.  Read by: as the coefficients in force.
  std::optional<StartingValues> starting = {};

  // How many of the next fits come out bad.  Written by: the host; the fits.
  std::int64_t bad_fits = 0;

  // Written by: the spectrum display.  Read by: the host.
  bool display_is_live = true;

  // Written by: the host, also from a signal handler.  Read by: AcqController.IsAbortRequested.
  std::atomic<bool> abort_requested = false;
};

// The record that travels with coefficients of this instrument that no one has changed yet.
CalInfo CalInfoOf(const description::InstrumentDescription& description);

// The recorded part of the flight-time axis.
masstime::AcquisitionWindow WindowOf(const InstrumentState& state);

// The coefficients in force, with the starting A and t0 in place of their own when there are any;
// the higher terms belong to the old A and t0 and are then 0.
Calibration StartingCalibration(const InstrumentState& state);

// The value of a setpoint, by its own id or an alias. Raises error 5, naming the id, for one that
// the instrument doesn't have.
const description::Setpoint& SetpointOf(const InstrumentState& state, std::int32_t id);

}  // namespace tof::standin
