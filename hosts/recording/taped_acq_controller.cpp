#include "hosts/recording/taped_acq_controller.h"

#include "hosts/recording/taped_mass_time.h"

namespace tof::recording {

void TapedAcqController::InitializeController(std::int32_t zero) {
  object_.Ask("AcqController.InitializeController", Arguments(zero),
              [&] { inner_->InitializeController(zero); });
}

void TapedAcqController::InitializeAcquisition(std::int32_t zero) {
  object_.Ask("AcqController.InitializeAcquisition", Arguments(zero),
              [&] { inner_->InitializeAcquisition(zero); });
}

Variant TapedAcqController::PrepareSetpointAccess() {
  return object_.Ask("AcqController.PrepareSetpointAccess", Arguments(),
                     [&] { return inner_->PrepareSetpointAccess(); });
}

Variant TapedAcqController::PrepareSetpointTable() {
  return object_.Ask("AcqController.PrepareSetpointTable", Arguments(),
                     [&] { return inner_->PrepareSetpointTable(); });
}

std::int16_t TapedAcqController::IsAbortRequested() {
  return object_.Ask("AcqController.IsAbortRequested", Arguments(),
                     [&] { return inner_->IsAbortRequested(); });
}

double TapedAcqController::GetScaleFactor() {
  return object_.Ask("AcqController.GetScaleFactor", Arguments(),
                     [&] { return inner_->GetScaleFactor(); });
}

std::shared_ptr<MassCalCoefficients> TapedAcqController::GetCurrentMassCalObject() {
  return object_.AskObject<TapedMassCalCoefficients>(
      "AcqController.GetCurrentMassCalObject", Arguments(),
      [&] { return inner_->GetCurrentMassCalObject(); });
}

double TapedAcqController::GetCurrentA() {
  return object_.Ask("AcqController.GetCurrentA", Arguments(),
                     [&] { return inner_->GetCurrentA(); });
}

std::shared_ptr<MassCalCoefficients> TapedAcqController::GetDefaultCalibCoefficients() {
  return object_.AskObject<TapedMassCalCoefficients>(
      "AcqController.GetDefaultCalibCoefficients", Arguments(),
      [&] { return inner_->GetDefaultCalibCoefficients(); });
}

void TapedAcqController::SetCalibCoefficients(
    const std::shared_ptr<MassCalCoefficients>& coefficients) {
  object_.Ask("AcqController.SetCalibCoefficients",
              Arguments(NumberOf<TapedMassCalCoefficients>(coefficients)), [&] {
                inner_->SetCalibCoefficients(InnerOf<TapedMassCalCoefficients>(coefficients));
              });
}

void TapedAcqController::SetLikelyAAndT0(double a_per_us, double t0_us) {
  object_.Ask("AcqController.SetLikelyAAndT0", Arguments(a_per_us, t0_us),
              [&] { inner_->SetLikelyAAndT0(a_per_us, t0_us); });
}

ColumnStatistics TapedAcqController::GetColumnStatistics(const BoundedArray2D<double>& values) {
  return object_.Ask("AcqController.GetColumnStatistics", Arguments(values),
                     [&] { return inner_->GetColumnStatistics(values); });
}

void TapedAcqController::EndAIC() {
  object_.Ask("AcqController.EndAIC", Arguments(), [&] { inner_->EndAIC(); });
}

Variant TapedAcqController::ReadSetpoint(std::int32_t id) {
  return object_.Ask("AcqController.ReadSetpoint", Arguments(id),
                     [&] { return inner_->ReadSetpoint(id); });
}

std::string TapedAcqController::GetConfigurationName() {
  return object_.Ask("AcqController.GetConfigurationName", Arguments(),
                     [&] { return inner_->GetConfigurationName(); });
}

BoundedArray<double> TapedAcqController::GetCalibrantMasses(std::int32_t setpoint117,
                                                            const std::string& mode_name,
                                                            const std::string& configuration_name) {
  return object_.Ask(
      "AcqController.GetCalibrantMasses", Arguments(setpoint117, mode_name, configuration_name),
      [&] { return inner_->GetCalibrantMasses(setpoint117, mode_name, configuration_name); });
}

}  // namespace tof::recording
