// The instrument under check, held as the calibrator holds it, and what most checks need of it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "component/calibrator/instrument.h"

namespace tof::conformance {

// How the suite plays the user who asks for an abort. Without either, seeing one can't be checked.
struct AbortHook {
  std::function<void()> ask;
  std::function<void()> withdraw;
};

// What a supplier hands to the suite; factory and host outlive it.
struct Supplied {
  InstrumentFactory& factory;
  HostServices& host;
  AbortHook abort = {};
  std::vector<double> masses = {};  // m/z of peaks to look for; empty: the instrument's calibrants
};

struct Subject {
  Instrument parts;  // without those that the factory failed to create
  HostServices& host;
  AbortHook abort;
  std::vector<double> masses;
};

// Creates and initialises the collaborators in the calibrator's order. A failure is left to the
// checks of the collaborator to tell.
Subject MakeSubject(const Supplied& supplied);

bool HasEveryCollaborator(const Subject& subject);

// Each of the following raises NotApplicable where another check tells what is wrong.

std::shared_ptr<SetpointTable> SetpointsOf(Subject& subject);

// In ascending order.
std::vector<double> CalibrantsOf(Subject& subject);

// An object of the caller's own, with the coefficients in force.
std::shared_ptr<MassCalCoefficients> CurrentCoefficients(Subject& subject);

// In ns.
struct Window {
  double start_ns = 0.0;
  double end_ns = 0.0;
};
Window AcquisitionWindowOf(Subject& subject);

// NotApplicable unless the instrument names a setpoint for abundance-immune calibration to move.
void RequireAbundanceImmuneCalibration(Subject& subject);

// That setpoint.
std::int32_t RfSetpointId(Subject& subject);

// Where abundance-immune calibration moves it to, V; NotApplicable for an empty range.
struct RfRange {
  double low = 0.0;
  double high = 0.0;
};
RfRange RfRangeOf(Subject& subject);

// The abundance band; NotApplicable for an empty one.
struct Band {
  double minimum = 0.0;
  double maximum = 0.0;
};
Band BandOf(Subject& subject);

// Waits as the calibrator does behind a change of voltage.
void Settle(Subject& subject);

// Runs `work`, which may move the RF voltage, and puts the voltage back, settled.
void MovingTheRfVoltage(Subject& subject, const std::function<void(std::int32_t rf_id)>& work);

}  // namespace tof::conformance
