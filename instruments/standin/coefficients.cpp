#include "instruments/standin/coefficients.h"

#include <utility>

#include "instruments/masstime/mass_time_coefficients.h"

namespace tof::standin {
namespace {

// Far beyond what a calibrator takes for an A of the instrument.
constexpr double kSpoiltA = 1.1;

class GatedCoefficients : public MassCalCoefficients {
 public:
  GatedCoefficients(std::shared_ptr<InstrumentState> state, const Calibration& calibration)
      : state_(std::move(state)),
        inner_({calibration.coefficients, WindowOf(*state_)}, state_->source->BinWidthNs(),
               calibration.info) {}

  double GetBinWidth() override {
    state_->gate.Enter(Operation::kMassCalCoefficientsGetBinWidth);
    return inner_.GetBinWidth();
  }
  CoefficientRecord GetCoefficientRecord() override {
    state_->gate.Enter(Operation::kMassCalCoefficientsGetCoefficientRecord);
    return inner_.GetCoefficientRecord();
  }
  double TimeToMass(double time_ns) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsTimeToMass);
    return inner_.TimeToMass(time_ns);
  }
  double MassToTime(double mass) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsMassToTime);
    return inner_.MassToTime(mass);
  }
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsCalibrate);
    inner_.Calibrate(masses, times_ns);
    if (state_->bad_fits <= 0) return;
    --state_->bad_fits;
    Spoil();
  }
  CalInfo GetCalInfo() override {
    state_->gate.Enter(Operation::kMassCalCoefficientsGetCalInfo);
    return inner_.GetCalInfo();
  }
  void SetCalInfo(const CalInfo& info) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsSetCalInfo);
    inner_.SetCalInfo(info);
  }

 private:
  void Spoil() {
    masstime::MassTimeModel model = inner_.model();
    model.coefficients[masstime::kA] *= kSpoiltA;
    inner_ = masstime::MassTimeCoefficients(model, inner_.GetBinWidth(), inner_.GetCalInfo());
  }

  std::shared_ptr<InstrumentState> state_;
  masstime::MassTimeCoefficients inner_;
};

}  // namespace

std::shared_ptr<MassCalCoefficients> MakeCoefficients(const std::shared_ptr<InstrumentState>& state,
                                                      const Calibration& calibration) {
  return std::make_shared<GatedCoefficients>(state, calibration);
}

}  // namespace tof::standin
