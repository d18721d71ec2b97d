// A small working instrument: every ion flies t = t0 + sqrt(m) / A. Arrange it by its fields; read
// the journal for what was asked of it.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "component/calibrator/collaborators.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_mass_time.h"
#include "tests/support/journal.h"

namespace tof::fakes {

class FakeInstrument : public InstrumentFactory {
 public:
  FakeInstrument(Journal& journal, FakeHost& host);

  // What the ions really do.
  double true_a_per_ns = 0.00065;
  double true_t0_ns = 300.0;
  double abundance = 150000.0;
  // The abundance of a mass at a value of the AIC setpoint; none: `abundance` for all. A mass
  // without ions is a peak that is not found.
  std::function<double(double mass, double rf_value)> abundance_at;
  // Where the searches of the parser and of the firmware put the AIC setpoint; none: at the highest
  // whole value from 160 down to 20 with an abundance in the target band, at 20 without any.
  std::function<double(double mass)> searched_rf_value;
  // Added to the flight time of spectrum n (from 0), ns; spectra beyond the end add nothing.
  std::vector<double> spectrum_shift_ns;
  // Called while a spectrum is taken, e.g. to let the acquisition software move setpoints.
  std::function<void()> on_spectrum = [] {};
  // The masses of which a spectrum has peaks; also the instrument's own calibrant list.
  std::vector<double> sample_masses = {118.0863, 322.0481, 622.029, 922.0098, 1221.9906, 1521.9715};

  // The most peaks that search n (from 0) finds; searches beyond the end find all.
  std::vector<std::size_t> most_peaks_found;
  std::size_t peak_searches = 0;
  // How many of the masses that are asked for, from the last one on, a parsed spectrum leaves out.
  std::int32_t masses_left_out = 0;
  // The first mass that a parsed spectrum has a column for; the columns keep their indices.
  std::int32_t first_mass_parsed = 0;
  // What row 1 of a parsed peak shows above the abundance in row 0. An instrument shows the same in
  // both (0); they differ here, so that it is seen which of them was read.
  double row1_abundance_excess = 1e6;

  // What the instrument holds.
  std::map<std::int32_t, Variant> setpoints;
  std::map<std::string, double> settings;  // "Section/Key"
  std::map<std::string, std::string> flags;
  std::shared_ptr<FakeCoefficients> in_force;
  std::shared_ptr<FakeCoefficients> defaults;  // none: no defaults
  bool has_likely_a = false;
  double likely_a_per_us = 0.0;
  double likely_t0_us = 0.0;
  std::vector<double> bad_fits;  // see FakeCoefficients
  std::int16_t abort_requested = 0;
  double scale_factor = 1.0;
  bool has_mass_cal_object = true;  // false: there is no current coefficients object
  bool has_statistics = true;       // false: statistics of no column at all
  bool avoid_aic = true;
  Variant masses_of_the_aic_question;        // what ShouldAvoidAIC was asked about last
  double peak_find_width_from_parser = 0.0;  // not 0: ShouldAvoidAIC stores it
  bool has_display = true;
  bool display_live = true;
  std::string flag_key = "AICDisabled";
  double time_sec = 1234.5;
  std::string mode_name = "MS";
  bool mode_uses_rf_setpoints = true;
  std::string configuration_name = "Standard";
  std::string base_folder = "D:\\Data";
  // Answers of the status reader, the last one for good.
  std::deque<Variant> ready_states{Variant(std::int32_t{0})};
  std::deque<Variant> run_states{Variant(std::int32_t{2})};
  std::int32_t spectra_taken = 0;
  std::int32_t aic_ends = 0;

  // Error 5000 for one that the instrument does not hold.
  Variant& SetpointOf(std::int32_t id);
  double TrueTime(double mass) const;
  std::int32_t AicSetpointId() const;
  // What a spectrum taken now shows of a mass: nothing when it flies longer than spectra last.
  double AbundanceNow(double mass) const;
  double SearchedRfValue(double mass) const;
  std::shared_ptr<FakeCoefficients> NewCoefficients(double a_per_ns, double t0_ns);

  std::shared_ptr<DataDictionary> CreateDataDictionary() override;
  std::shared_ptr<AcqController> CreateAcqController() override;
  std::shared_ptr<SpecParser> CreateSpecParser() override;
  std::shared_ptr<CalibLogFiles> CreateCalibLogFiles() override;
  std::shared_ptr<TuneFlags> CreateTuneFlags() override;
  std::shared_ptr<CalibSettings> CreateCalibSettings() override;
  std::shared_ptr<InstrumentPaths> GetInstrumentPaths() override;
  std::shared_ptr<FirmwareLibrary> GetFirmwareLibrary() override;
  std::shared_ptr<PeakList> CreatePeakList() override;
  std::shared_ptr<MassCalCoefficients> CreateMassCalCoefficients() override;

  Journal& journal;
  FakeHost& host;
};

}  // namespace tof::fakes
