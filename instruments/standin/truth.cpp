#include "instruments/standin/truth.h"

#include <algorithm>
#include <cmath>

#include "component/automation/convert.h"
#include "instruments/masstime/mass_time_model.h"
#include "instruments/standin/instrument_access.h"
#include "instruments/virtual/truth.h"

namespace tof::standin {
namespace {

namespace vi = virtual_instrument;

constexpr std::size_t kCheckMasses = 200;

// How an abundance becomes a rate of ions: through the detector's gain.
class IonScale {
 public:
  IonScale(const InstrumentState& state, const vi::Parameters& parameters)
      : pulses_(parameters.acquisition.pulses_per_spectrum) {
    const auto channel = ToInt32(SetpointOf(state, vi::kGainChannelSetpoint).value);  // from 1
    counts_per_ion_ =
        parameters.detector.gain_channels.at(static_cast<std::size_t>(channel - 1)).counts_per_ion;
  }

  double Ions(double abundance) const { return abundance / counts_per_ion_; }

  // Mean ions per pulse behind the recorded ones. A peak that has an ion in every pulse counts as
  // one that misses a single pulse: the most that can be told apart.
  double Lambda(double abundance) const {
    const double most = static_cast<double>(pulses_) - 1.0;
    return vi::IonsPerPulseOf(std::clamp(Ions(abundance), 0.0, most), pulses_);
  }

 private:
  std::int64_t pulses_;
  double counts_per_ion_ = 1.0;
};

double BandSetting(const InstrumentState& state, const char* key) {
  return CalibrationSettingOf(state, key) * state.description.acquisition.scale_factor;
}

TruthFigures FiguresOf(const vi::ErrorFigures& errors) {
  return {errors.rms_ppm, errors.common_ppm, errors.mass_dependent_ppm, errors.max_ppm};
}

std::vector<vi::CalibrantStatistics> StatisticsOf(const std::vector<MeasuredMass>& rows,
                                                  const IonScale& scale, std::int64_t spectra) {
  std::vector<vi::CalibrantStatistics> statistics;
  for (const MeasuredMass& row : rows) {
    if (!row.time_ns || row.abundance.value_or(0.0) <= 0.0) continue;
    statistics.push_back(
        {row.expected, *row.time_ns, scale.Ions(*row.abundance) * static_cast<double>(spectra)});
  }
  return statistics;
}

double MeanLambda(const std::vector<MeasuredMass>& rows, const IonScale& scale) {
  double sum = 0.0;
  double count = 0.0;
  for (const MeasuredMass& row : rows) {
    if (!row.abundance) continue;
    sum += scale.Lambda(*row.abundance);
    count += 1.0;
  }
  return sum / count;
}

}  // namespace

std::optional<Truth> TruthOf(const StandInInstrument& instrument,
                             const std::vector<MeasuredMass>& measured, std::int64_t spectra,
                             std::int64_t collected) {
  const vi::VirtualSource* const source = instrument.Virtual();
  if (source == nullptr) return std::nullopt;
  const InstrumentState& state = instrument.State();
  const vi::Parameters& parameters = source->parameters();
  const IonScale scale(state, parameters);
  const std::vector<vi::CalibrantStatistics> calibrants = StatisticsOf(measured, scale, spectra);
  if (calibrants.size() < 2) return std::nullopt;

  const auto [lightest, heaviest] =
      std::minmax_element(calibrants.begin(), calibrants.end(),
                          [](const auto& a, const auto& b) { return a.mass_u < b.mass_u; });
  const std::vector<double> masses =
      vi::CheckMasses(lightest->mass_u, heaviest->mass_u, kCheckMasses);
  const masstime::MassTimeModel model{state.in_force.coefficients, WindowOf(state)};
  const auto time_to_mass = [&model](double time_ns) { return TimeToMass(model, time_ns); };
  const double drift_ppm = source->MeanDriftPpm(collected);
  const auto errors_at = [&](double lambda) {
    return FiguresOf(vi::ErrorsAt(parameters, time_to_mass, masses, lambda, drift_ppm));
  };

  Truth truth;
  truth.at_calibration = errors_at(MeanLambda(measured, scale));
  truth.in_band = FiguresOf(vi::ErrorsInBand(
      parameters, time_to_mass, masses, scale.Lambda(BandSetting(state, "AIC_TargetMinAb")),
      scale.Lambda(BandSetting(state, "AIC_TargetMaxAb")), drift_ppm));
  truth.weak = errors_at(0.0);
  truth.limit_ppm = vi::StatisticalLimitPpm(parameters.analyzer, calibrants, masses);
  return truth;
}

}  // namespace tof::standin
