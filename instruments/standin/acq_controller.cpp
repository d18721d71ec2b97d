#include "instruments/standin/acq_controller.h"

#include "component/automation/error.h"
#include "instruments/standin/coefficients.h"
#include "instruments/standin/column_statistics.h"
#include "instruments/standin/instrument_access.h"

namespace tof::standin {

void StandInAcqController::InitializeController(std::int32_t) {
  state_->gate.Enter(Operation::kAcqControllerInitializeController);
}

void StandInAcqController::InitializeAcquisition(std::int32_t) {
  state_->gate.Enter(Operation::kAcqControllerInitializeAcquisition);
}

Variant StandInAcqController::PrepareSetpointAccess() {
  state_->gate.Enter(Operation::kAcqControllerPrepareSetpointAccess);
  return {};
}

Variant StandInAcqController::PrepareSetpointTable() {
  state_->gate.Enter(Operation::kAcqControllerPrepareSetpointTable);
  return {};
}

std::int16_t StandInAcqController::IsAbortRequested() {
  state_->gate.Enter(Operation::kAcqControllerIsAbortRequested);
  constexpr std::int16_t kTrue = -1;
  const bool requested =
      state_->abort_requested || state_->clock->Seconds() >= state_->abort_after_sec;
  return requested ? kTrue : std::int16_t{0};
}

double StandInAcqController::GetScaleFactor() {
  state_->gate.Enter(Operation::kAcqControllerGetScaleFactor);
  return state_->description.acquisition.scale_factor;
}

std::shared_ptr<MassCalCoefficients> StandInAcqController::GetCurrentMassCalObject() {
  state_->gate.Enter(Operation::kAcqControllerGetCurrentMassCalObject);
  return MakeCoefficients(state_, StartingCalibration(*state_));
}

double StandInAcqController::GetCurrentA() {
  state_->gate.Enter(Operation::kAcqControllerGetCurrentA);
  return state_->in_force.coefficients[masstime::kA];
}

std::shared_ptr<MassCalCoefficients> StandInAcqController::GetDefaultCalibCoefficients() {
  state_->gate.Enter(Operation::kAcqControllerGetDefaultCalibCoefficients);
  const description::InstrumentDescription& description = state_->description;
  if (!description.default_coefficients) return nullptr;
  return MakeCoefficients(state_, {*description.default_coefficients, CalInfoOf(description)});
}

void StandInAcqController::SetCalibCoefficients(
    const std::shared_ptr<MassCalCoefficients>& coefficients) {
  state_->gate.Enter(Operation::kAcqControllerSetCalibCoefficients);
  if (!coefficients) Raise(RunTimeError::kObjectVariableNotSet);
  const Calibration calibration{coefficients->GetCoefficientRecord(), coefficients->GetCalInfo()};
  state_->in_force = calibration;
  state_->starting.reset();
}

void StandInAcqController::SetLikelyAAndT0(double a_per_us, double t0_us) {
  state_->gate.Enter(Operation::kAcqControllerSetLikelyAAndT0);
  constexpr double kNsPerUs = 1000.0;
  state_->starting = StartingValues{a_per_us / kNsPerUs, t0_us * kNsPerUs};
}

ColumnStatistics StandInAcqController::GetColumnStatistics(const BoundedArray2D<double>& values) {
  state_->gate.Enter(Operation::kAcqControllerGetColumnStatistics);
  return ColumnStatisticsOf(values);
}

void StandInAcqController::EndAIC() {
  state_->gate.Enter(Operation::kAcqControllerEndAIC);
}

Variant StandInAcqController::ReadSetpoint(std::int32_t id) {
  state_->gate.Enter(Operation::kAcqControllerReadSetpoint);
  return standin::ReadSetpoint(*state_, id);
}

std::string StandInAcqController::GetConfigurationName() {
  state_->gate.Enter(Operation::kAcqControllerGetConfigurationName);
  return state_->description.configuration;
}

BoundedArray<double> StandInAcqController::GetCalibrantMasses(std::int32_t setpoint117,
                                                              const std::string&,
                                                              const std::string&) {
  state_->gate.Enter(Operation::kAcqControllerGetCalibrantMasses);
  const auto list = state_->description.calibrants.find(setpoint117);
  if (list == state_->description.calibrants.end()) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                          "The instrument has no calibrant list " + std::to_string(setpoint117));
  }
  return BoundedArray<double>(list->second);
}

}  // namespace tof::standin
