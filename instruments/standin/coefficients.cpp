#include "instruments/standin/coefficients.h"

#include <utility>
#include <vector>

#include "component/automation/error.h"
#include "instruments/masstime/fit.h"

namespace tof::standin {
namespace {

class StandInCoefficients : public MassCalCoefficients {
 public:
  StandInCoefficients(std::shared_ptr<InstrumentState> state, const Calibration& calibration)
      : state_(std::move(state)), calibration_(calibration) {}

  double GetBinWidth() override {
    state_->gate.Enter(Operation::kMassCalCoefficientsGetBinWidth);
    return state_->source->BinWidthNs();
  }
  CoefficientRecord GetCoefficientRecord() override {
    state_->gate.Enter(Operation::kMassCalCoefficientsGetCoefficientRecord);
    return calibration_.coefficients;
  }
  double TimeToMass(double time_ns) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsTimeToMass);
    return masstime::TimeToMass(Model(), time_ns);
  }
  double MassToTime(double mass) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsMassToTime);
    return masstime::MassToTime(Model(), mass);
  }
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsCalibrate);
    const std::vector<double> m(masses.begin(), masses.end());
    const std::vector<double> t(times_ns.begin(), times_ns.end());
    try {
      const masstime::Fit fit = masstime::FitWithFallback(
          {m, t}, WindowOf(*state_),
          static_cast<masstime::TermSet>(calibration_.info.PolyTermPowerUseFlag) &
              masstime::kAllTerms,
          masstime::Weighting::kRelativeMass, masstime::Weighting::kRelativeMass);
      calibration_.coefficients = fit.coefficients;
      calibration_.info.PolyTermsFlags = static_cast<std::int32_t>(fit.terms);
    } catch (const masstime::FitError& error) {
      throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall), error.what());
    }
  }
  CalInfo GetCalInfo() override {
    state_->gate.Enter(Operation::kMassCalCoefficientsGetCalInfo);
    return calibration_.info;
  }
  void SetCalInfo(const CalInfo& info) override {
    state_->gate.Enter(Operation::kMassCalCoefficientsSetCalInfo);
    calibration_.info = info;
  }

 private:
  masstime::MassTimeModel Model() const { return {calibration_.coefficients, WindowOf(*state_)}; }

  std::shared_ptr<InstrumentState> state_;
  Calibration calibration_;
};

}  // namespace

std::shared_ptr<MassCalCoefficients> MakeCoefficients(const std::shared_ptr<InstrumentState>& state,
                                                      const Calibration& calibration) {
  return std::make_shared<StandInCoefficients>(state, calibration);
}

}  // namespace tof::standin
