// The acquisition controller on a tape.
#pragma once

#include <memory>
#include <utility>

#include "component/calibrator/collaborators.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedAcqController : public AcqController {
 public:
  TapedAcqController(Tape& tape, ObjectNumber number, std::shared_ptr<AcqController> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  void InitializeController(std::int32_t zero) override;
  void InitializeAcquisition(std::int32_t zero) override;
  Variant PrepareSetpointAccess() override;
  Variant PrepareSetpointTable() override;
  std::int16_t IsAbortRequested() override;
  double GetScaleFactor() override;
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override;
  double GetCurrentA() override;
  std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override;
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override;
  void SetLikelyAAndT0(double a_per_us, double t0_us) override;
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override;
  void EndAIC() override;
  Variant ReadSetpoint(std::int32_t id) override;
  std::string GetConfigurationName() override;
  BoundedArray<double> GetCalibrantMasses(std::int32_t setpoint117, const std::string& mode_name,
                                          const std::string& configuration_name) override;

 private:
  TapedObject object_;
  std::shared_ptr<AcqController> inner_;
};

}  // namespace tof::recording
