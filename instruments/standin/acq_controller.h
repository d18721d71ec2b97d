#pragma once

#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

class StandInAcqController : public AcqController {
 public:
  explicit StandInAcqController(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  void InitializeController(std::int32_t zero) override;
  void InitializeAcquisition(std::int32_t zero) override;
  Variant PrepareSetpointAccess() override;  // Empty
  Variant PrepareSetpointTable() override;   // Empty

  // -1 once the host asked for it, or the instrument's clock reached the time planned for it.
  std::int16_t IsAbortRequested() override;
  double GetScaleFactor() override;

  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override;
  double GetCurrentA() override;
  std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override;
  // Takes a copy: what the caller does to the object afterwards changes nothing in force.
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override;
  void SetLikelyAAndT0(double a_per_us, double t0_us) override;

  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override;
  void EndAIC() override;

  Variant ReadSetpoint(std::int32_t id) override;
  std::string GetConfigurationName() override;
  // The lists belong to the value of the setpoint alone; error 5 when it selects none.
  BoundedArray<double> GetCalibrantMasses(std::int32_t setpoint117, const std::string& mode_name,
                                          const std::string& configuration_name) override;

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
