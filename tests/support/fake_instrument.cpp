#include "tests/support/fake_instrument.h"

#include <cmath>
#include <limits>
#include <sstream>

#include "component/automation/convert.h"

namespace tof::fakes {
namespace {

constexpr std::int32_t kUnknownSetpoint = 5000;
constexpr std::int32_t kAcqEndUs = 72;

// What every collaborator of the fake has: the instrument it belongs to.
struct Part {
  explicit Part(FakeInstrument& owner) : fake(owner) {}
  void Enter(std::string call) { fake.journal.Enter(std::move(call)); }
  FakeInstrument& fake;
};

class Table : public SetpointTable, Part {
 public:
  using Part::Part;
  Variant GetSetpoint(std::int32_t id) override {
    Enter("SetpointTable.GetSetpoint(" + std::to_string(id) + ")");
    return fake.SetpointOf(id);
  }
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override {
    Enter("SetpointTable.SetSetpoint(" + std::to_string(id) + "," +
          std::to_string(static_cast<int>(type)) + "," + ToText(value) + ")");
    fake.SetpointOf(id) = value;
  }
  Variant GetCurrentValue(std::int32_t id) override {
    Enter("SetpointTable.GetCurrentValue(" + std::to_string(id) + ")");
    return fake.SetpointOf(id);
  }
};

class Display : public SpectrumDisplay, Part {
 public:
  using Part::Part;
  void SetDisplayUpdate(bool live) override {
    Enter(std::string("SpectrumDisplay.SetDisplayUpdate(") + (live ? "True)" : "False)"));
    fake.display_live = live;
  }
};

class Status : public StatusReader, Part {
 public:
  using Part::Part;
  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override {
    Enter("StatusReader.Read(" + name + "," + type + "," + std::to_string(zero) + ")");
    auto& answers =
        name.find("NRDYSTATE") != std::string::npos ? fake.ready_states : fake.run_states;
    const Variant answer = answers.front();
    if (answers.size() > 1) answers.pop_front();
    return answer;
  }
};

class Dictionary : public DataDictionary, Part {
 public:
  using Part::Part;
  void Initialize() override { Enter("DataDictionary.Initialize"); }
  std::shared_ptr<SetpointTable> GetSetpointTable() override {
    Enter("DataDictionary.GetSetpointTable");
    return std::make_shared<Table>(fake);
  }
  std::shared_ptr<SpectrumDisplay> GetConfigObject() override {
    Enter("DataDictionary.GetConfigObject");
    return fake.has_display ? std::make_shared<Display>(fake) : nullptr;
  }
  std::string GetFlagKey() override {
    Enter("DataDictionary.GetFlagKey");
    return fake.flag_key;
  }
  double GetTimeValue() override {
    Enter("DataDictionary.GetTimeValue");
    return fake.time_sec;
  }
  std::int32_t GetAcqStartTime() override {
    Enter("DataDictionary.GetAcqStartTime");
    return 12;
  }
  std::int32_t GetAcqEndTime() override {
    Enter("DataDictionary.GetAcqEndTime");
    return kAcqEndUs;
  }
  std::shared_ptr<StatusReader> GetStatusReader() override {
    Enter("DataDictionary.GetStatusReader");
    return std::make_shared<Status>(fake);
  }
  std::string GetModeName() override {
    Enter("DataDictionary.GetModeName");
    return fake.mode_name;
  }
  bool ModeUsesRfSetpoints(const std::string& mode) override {
    Enter("DataDictionary.ModeUsesRfSetpoints(" + mode + ")");
    return fake.mode_uses_rf_setpoints;
  }
};

class Controller : public AcqController, Part {
 public:
  using Part::Part;
  void InitializeController(std::int32_t zero) override {
    Enter("AcqController.InitializeController(" + std::to_string(zero) + ")");
  }
  void InitializeAcquisition(std::int32_t zero) override {
    Enter("AcqController.InitializeAcquisition(" + std::to_string(zero) + ")");
  }
  Variant PrepareSetpointAccess() override {
    Enter("AcqController.PrepareSetpointAccess");
    return {};
  }
  Variant PrepareSetpointTable() override {
    Enter("AcqController.PrepareSetpointTable");
    return {};
  }
  std::int16_t IsAbortRequested() override {
    Enter("AcqController.IsAbortRequested");
    return fake.abort_requested;
  }
  double GetScaleFactor() override {
    Enter("AcqController.GetScaleFactor");
    return fake.scale_factor;
  }
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override {
    Enter("AcqController.GetCurrentMassCalObject");
    if (!fake.has_mass_cal_object) return nullptr;
    auto copy = std::make_shared<FakeCoefficients>(*fake.in_force);
    copy->bad_fits = &fake.bad_fits;
    if (fake.has_likely_a) {
      copy->record[0] = fake.likely_a_per_us / 1000.0;
      copy->record[1] = fake.likely_t0_us * 1000.0;
    }
    return copy;
  }
  double GetCurrentA() override {
    Enter("AcqController.GetCurrentA");
    return fake.in_force->record[0];
  }
  std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override {
    Enter("AcqController.GetDefaultCalibCoefficients");
    return fake.defaults;
  }
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override {
    Enter("AcqController.SetCalibCoefficients");
    fake.in_force = std::dynamic_pointer_cast<FakeCoefficients>(coefficients);
    fake.has_likely_a = false;
  }
  void SetLikelyAAndT0(double a_per_us, double t0_us) override {
    Enter("AcqController.SetLikelyAAndT0");
    fake.has_likely_a = true;
    fake.likely_a_per_us = a_per_us;
    fake.likely_t0_us = t0_us;
  }
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override;
  void EndAIC() override {
    Enter("AcqController.EndAIC");
    ++fake.aic_ends;
  }
  Variant ReadSetpoint(std::int32_t id) override {
    Enter("AcqController.ReadSetpoint(" + std::to_string(id) + ")");
    return fake.SetpointOf(id);
  }
  std::string GetConfigurationName() override {
    Enter("AcqController.GetConfigurationName");
    return fake.configuration_name;
  }
  BoundedArray<double> GetCalibrantMasses(std::int32_t setpoint117, const std::string& mode,
                                          const std::string& configuration) override {
    Enter("AcqController.GetCalibrantMasses(" + std::to_string(setpoint117) + "," + mode + "," +
          configuration + ")");
    return BoundedArray<double>(fake.sample_masses);
  }
};

// Sample deviation; 0 for a single spectrum.
ColumnStatistics Controller::GetColumnStatistics(const BoundedArray2D<double>& values) {
  Enter("AcqController.GetColumnStatistics");
  if (!fake.has_statistics) return {};
  const double n = values.UBound(1) - values.LBound(1) + 1.0;
  ColumnStatistics statistics;
  statistics.averages.ReDim(values.LBound(2), values.UBound(2));
  statistics.standard_deviations.ReDim(values.LBound(2), values.UBound(2));
  for (std::int32_t j = values.LBound(2); j <= values.UBound(2); ++j) {
    double sum = 0.0;
    for (std::int32_t i = values.LBound(1); i <= values.UBound(1); ++i) sum += values(i, j);
    double squares = 0.0;
    for (std::int32_t i = values.LBound(1); i <= values.UBound(1); ++i) {
      squares += (values(i, j) - sum / n) * (values(i, j) - sum / n);
    }
    statistics.averages(j) = sum / n;
    statistics.standard_deviations(j) = n > 1.0 ? std::sqrt(squares / (n - 1.0)) : 0.0;
  }
  return statistics;
}

class Parser : public SpecParser, Part {
 public:
  using Part::Part;
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    Enter("SpecParser.GetCalibrantPeakAttributes(" + ToText(window) + ")");
    fake.on_spectrum();
    const auto n = static_cast<std::size_t>(fake.spectra_taken++);
    const double shift = n < fake.spectrum_shift_ns.size() ? fake.spectrum_shift_ns[n] : 0.0;
    const auto& wanted = AsDoubleArray(masses);
    const std::int32_t last = wanted.UBound() - fake.masses_left_out;
    PeakAttribsTable table({0, 1}, {fake.first_mass_parsed, last}, IfEmpty::kIsAllowed);
    for (std::int32_t i = fake.first_mass_parsed; i <= last; ++i) {
      FillPair(wanted(i), shift, table(0, i), table(1, i));
    }
    return table;
  }
  double GetPeakAttribute(PeakCalculationtype, double mass, double tolerance) override {
    Enter("SpecParser.GetPeakAttribute(" + ToText(mass) + "," + ToText(tolerance) + ")");
    return fake.AbundanceNow(mass);
  }
  void FindPeaks(double start_ns, double end_ns, std::int32_t sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    Enter("SpecParser.FindPeaks(" + ToText(start_ns) + "," + ToText(end_ns) + "," +
          std::to_string(sought) + ")");
    auto found = std::make_shared<FakePeakList>(fake.journal);
    const std::size_t search = fake.peak_searches++;
    const std::size_t most = search < fake.most_peaks_found.size() ? fake.most_peaks_found[search]
                                                                   : fake.sample_masses.size();
    for (const double mass : fake.sample_masses) {
      const double time = fake.TrueTime(mass);
      if (time < start_ns || time > end_ns) continue;
      if (static_cast<std::int32_t>(found->records.size()) >= sought) break;
      if (found->records.size() >= most) break;
      found->records.push_back({.position = time, .height = fake.abundance});
    }
    count = static_cast<std::int32_t>(found->records.size());
    list = found;
  }
  bool ShouldAvoidAIC(const Variant& masses, double& width) override {
    Enter("SpecParser.ShouldAvoidAIC(" + ToText(width) + ")");
    fake.masses_of_the_aic_question = masses;
    if (fake.peak_find_width_from_parser != 0.0) width = fake.peak_find_width_from_parser;
    return fake.avoid_aic;
  }
  void SearchTargetAbundance(double mass, double tolerance) override {
    Enter("SpecParser.SearchTargetAbundance(" + ToText(mass) + "," + ToText(tolerance) + ")");
    fake.setpoints.at(fake.AicSetpointId()) = fake.SearchedRfValue(mass);
  }

 private:
  void FillPair(double mass, double shift, PeakAttribs& row0, PeakAttribs& row1) const {
    const double abundance = fake.AbundanceNow(mass);
    if (abundance == 0.0) {
      row0.time = row1.time = std::numeric_limits<double>::quiet_NaN();
      return;
    }
    const double time = fake.TrueTime(mass) + shift;
    const double root = fake.in_force->record[0] * (time - fake.in_force->record[1]);
    row0 = {.time = time,
            .attribute32 = -time / 30000.0,
            .abundance = abundance,
            .attribute48 = time / 40000.0};
    row1 = {.time = root * root,
            .attribute32 = root * root - mass,
            .abundance = abundance + fake.row1_abundance_excess,
            .attribute48 = -time / 20000.0};
  }
};

class Flags : public TuneFlags, Part {
 public:
  using Part::Part;
  std::string GetFlag(const std::string& key, std::int32_t minus_one) override {
    Enter("TuneFlags.GetFlag(" + key + "," + std::to_string(minus_one) + ")");
    const auto found = fake.flags.find(key);
    return found == fake.flags.end() ? std::string() : found->second;
  }
};

class Settings : public CalibSettings, Part {
 public:
  using Part::Part;
  void GetValue(const std::string& section, const std::string& key, std::int32_t zero,
                double& value) override {
    Enter("CalibSettings.GetValue(" + section + "/" + key + "," + std::to_string(zero) + ")");
    const auto found = fake.settings.find(section + "/" + key);
    if (found != fake.settings.end()) value = found->second;
  }
};

class LogFiles : public CalibLogFiles, Part {
 public:
  using Part::Part;
  std::shared_ptr<TextStream> OpenLogFile(const std::string& prefix, const std::string& header,
                                          const std::string& extension) override {
    Enter("CalibLogFiles.OpenLogFile(" + prefix + "," + extension + ")");
    const std::string path = fake.base_folder + "\\Logfiles\\" + prefix + "_" +
                             std::to_string(++opened_) + "." + extension;
    const auto stream = fake.host.OpenStream(path, false);
    fake.host.files[path].bytes += header + "\r\n";
    return stream;
  }
  std::string JoinAsCsvLine(const std::array<Variant, 6>& values) override {
    Enter("CalibLogFiles.JoinAsCsvLine");
    std::string line = ToText(values[0]);
    for (std::size_t i = 1; i < values.size(); ++i) line += ", " + ToText(values[i]);
    return line;
  }

 private:
  int opened_ = 0;
};

class Paths : public InstrumentPaths, Part {
 public:
  using Part::Part;
  std::string GetBaseFolder() override {
    Enter("InstrumentPaths.GetBaseFolder");
    return fake.base_folder;
  }
};

class Firmware : public FirmwareLibrary, Part {
 public:
  using Part::Part;
  // Looks for the one peak in its window of flight times, and leaves the setpoint alone.
  float BinarySearchForTargetAb(std::int32_t argument1, float minimum, float maximum,
                                float speed_up_factor, float argument5, float argument6,
                                float argument7, std::int32_t argument8, float start_ns,
                                float end_ns) override {
    std::string call = "FirmwareLibrary.BinarySearchForTargetAb(" + std::to_string(argument1);
    for (const float value : {minimum, maximum, speed_up_factor, argument5, argument6, argument7}) {
      call += "," + SingleText(value);
    }
    Enter(call + "," + std::to_string(argument8) + "," + SingleText(start_ns) + "," +
          SingleText(end_ns) + ")");
    for (const double mass : fake.sample_masses) {
      const double time = fake.TrueTime(mass);
      if (time >= start_ns && time <= end_ns) return static_cast<float>(fake.SearchedRfValue(mass));
    }
    return argument6;
  }

 private:
  // The six digits that a single holds for certain.
  static std::string SingleText(float value) {
    std::ostringstream text;
    text << value;
    return text.str();
  }
};

}  // namespace

FakeInstrument::FakeInstrument(Journal& the_journal, FakeHost& the_host)
    : journal(the_journal), host(the_host) {
  in_force = NewCoefficients(true_a_per_ns * 1.001, true_t0_ns);
  defaults = NewCoefficients(true_a_per_ns * 1.0005, true_t0_ns);
  journal.request_abort = [this] { abort_requested = -1; };
  setpoints = {{18, std::int16_t{4}},
               {69, 0.0},
               {85, 1.5},
               {101, 175.0},
               {117, std::int32_t{3}},
               {119, std::int32_t{7}},
               {128, std::int16_t{11}},
               {149, std::int16_t{1}},
               {150, true},
               {162, false},
               {190, 200.0},
               {191, 90.0},
               {83, 75.0},
               {84, 75.0}};
  settings = {
      {"Calibration/AICSettlingTime_sec", 3.0},      {"Calibration/AIC_SetpointToUse", 84.0},
      {"Calibration/AIC_TargetMaxAb", 200000.0},     {"Calibration/AIC_TargetMinAb", 100000.0},
      {"Calibration/UseThisPowerFlag", 5.0},         {"Calibration/TargetAPercentError", 0.02},
      {"Calibration/TargetAPercentError_FPS", 0.03}, {"Calibration/Targett0PercentError", 0.5},
      {"PeakHandling/PeakFindWindowInPercentT", 0.5}};
  flags = {{flag_key, "Yes"},
           {"UseCalibrationAlgInMTObj", "Yes"},
           {"Calibration_t0ToUseToStartLookingforA_usec", "0.3"}};
}

Variant& FakeInstrument::SetpointOf(std::int32_t id) {
  const auto found = setpoints.find(id);
  if (found == setpoints.end()) throw AutomationError(kUnknownSetpoint, "No such setpoint");
  return found->second;
}

double FakeInstrument::TrueTime(double mass) const {
  return true_t0_ns + std::sqrt(mass) / true_a_per_ns;
}

std::int32_t FakeInstrument::AicSetpointId() const {
  return ToInt32(settings.at("Calibration/AIC_SetpointToUse"));
}

double FakeInstrument::AbundanceNow(double mass) const {
  if (TrueTime(mass) > kAcqEndUs * 1000.0) return 0.0;
  if (!abundance_at) return abundance;
  return abundance_at(mass, ToDouble(setpoints.at(AicSetpointId())));
}

double FakeInstrument::SearchedRfValue(double mass) const {
  if (searched_rf_value) return searched_rf_value(mass);
  constexpr int kHighest = 160;
  constexpr int kLowest = 20;
  const double minimum = settings.at("Calibration/AIC_TargetMinAb") * scale_factor;
  const double maximum = settings.at("Calibration/AIC_TargetMaxAb") * scale_factor;
  for (int value = kHighest; value > kLowest; --value) {
    const double there = abundance_at ? abundance_at(mass, value) : abundance;
    if (there >= minimum && there <= maximum) return value;
  }
  return kLowest;
}

std::shared_ptr<FakeCoefficients> FakeInstrument::NewCoefficients(double a_per_ns, double t0_ns) {
  auto coefficients = std::make_shared<FakeCoefficients>(journal);
  coefficients->record[0] = a_per_ns;
  coefficients->record[1] = t0_ns;
  return coefficients;
}

std::shared_ptr<DataDictionary> FakeInstrument::CreateDataDictionary() {
  journal.Enter("Create.DataDictionary");
  return std::make_shared<Dictionary>(*this);
}
std::shared_ptr<AcqController> FakeInstrument::CreateAcqController() {
  journal.Enter("Create.AcqController");
  return std::make_shared<Controller>(*this);
}
std::shared_ptr<SpecParser> FakeInstrument::CreateSpecParser() {
  journal.Enter("Create.SpecParser");
  return std::make_shared<Parser>(*this);
}
std::shared_ptr<CalibLogFiles> FakeInstrument::CreateCalibLogFiles() {
  journal.Enter("Create.CalibLogFiles");
  return std::make_shared<LogFiles>(*this);
}
std::shared_ptr<TuneFlags> FakeInstrument::CreateTuneFlags() {
  journal.Enter("Create.TuneFlags");
  return std::make_shared<Flags>(*this);
}
std::shared_ptr<CalibSettings> FakeInstrument::CreateCalibSettings() {
  journal.Enter("Create.CalibSettings");
  return std::make_shared<Settings>(*this);
}
std::shared_ptr<InstrumentPaths> FakeInstrument::GetInstrumentPaths() {
  journal.Enter("Create.InstrumentPaths");
  return std::make_shared<Paths>(*this);
}
std::shared_ptr<FirmwareLibrary> FakeInstrument::GetFirmwareLibrary() {
  journal.Enter("Create.FirmwareLibrary");
  return std::make_shared<Firmware>(*this);
}
std::shared_ptr<PeakList> FakeInstrument::CreatePeakList() {
  journal.Enter("Create.PeakList");
  return std::make_shared<FakePeakList>(journal);
}
std::shared_ptr<MassCalCoefficients> FakeInstrument::CreateMassCalCoefficients() {
  journal.Enter("Create.MassCalCoefficients");
  return NewCoefficients(0.0, 0.0);
}

}  // namespace tof::fakes
