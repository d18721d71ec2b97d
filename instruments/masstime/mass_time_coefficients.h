// The coefficients object that a calibration fits, on the mass-time model of this library.
#pragma once

#include "component/calibrator/mass_time_library.h"
#include "instruments/masstime/mass_time_model.h"

namespace tof::masstime {

// The calibration information record says how to fit and what was fitted:
//   PolyTermPowerUseFlag  the terms C to H that Calibrate is to fit with A and t0, bit 0 is C; it
//                         instructs Calibrate alone, conversions always use all coefficients
//   PolyTermsFlags        the terms that the last Calibrate did fit, written by it
//   TradWeighting         Weighting of a fit of A and t0 alone
//   PolyWeighting         Weighting of a fit with terms
// Everything else in it is carried unchanged.
class MassTimeCoefficients final : public MassCalCoefficients {
 public:
  MassTimeCoefficients(const MassTimeModel& model, double bin_width_ns, const CalInfo& info = {})
      : model_(model), bin_width_ns_(bin_width_ns), info_(info) {}

  double GetBinWidth() override { return bin_width_ns_; }
  CoefficientRecord GetCoefficientRecord() override { return model_.coefficients; }
  double TimeToMass(double time_ns) override;
  double MassToTime(double mass) override;

  // Fits as FitWithFallback does. Error 5, whose text says what is wrong, when nothing can be
  // fitted; coefficients and record are then as they were. Terms that were not fitted become 0.
  void Calibrate(const BoundedArray<double>& masses, const BoundedArray<double>& times_ns) override;

  CalInfo GetCalInfo() override { return info_; }
  void SetCalInfo(const CalInfo& info) override { info_ = info; }

  const MassTimeModel& model() const { return model_; }

 private:
  MassTimeModel model_;
  double bin_width_ns_;
  CalInfo info_;
};

}  // namespace tof::masstime
