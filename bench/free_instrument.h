// An instrument and a host that cost next to nothing: what a benchmark on them measures is the
// component's own work. Answers are fixed, files and log lines are discarded; the one cost that
// stays is the table of peak attributes, which a parser has to hand over for every spectrum.
#pragma once

#include <chrono>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "component/calibrator/tof_calibrator.h"

namespace tof::bench {

constexpr double kAPerNs = 0.00065;
constexpr double kT0Ns = 300.0;

struct DiscardingStream : TextStream {
  void WriteLine(std::string_view) override {}
  void Close() override {}
};

struct DiscardingFiles : FileSystem {
  bool FileExists(const std::string&) override { return false; }
  std::shared_ptr<TextStream> OpenForAppending(const std::string&) override { return stream; }
  std::shared_ptr<TextStream> CreateTextFile(const std::string&) override { return stream; }
  std::shared_ptr<TextStream> stream = std::make_shared<DiscardingStream>();
};

// Switches tracing on or off and drops every line.
struct DiscardingTrace : LateBoundObject {
  explicit DiscardingTrace(bool is_on) : on(is_on) {}
  Variant GetProperty(std::string_view) override { return Variant(on); }
  void PutProperty(std::string_view, const Variant&) override {}
  Variant Call(std::string_view, const std::vector<Variant>&) override { return {}; }
  bool on;
};

struct FreeHost : HostServices {
  explicit FreeHost(bool traced) : trace(std::make_shared<DiscardingTrace>(traced)) {}
  void Sleep(std::int32_t) override {}
  void ProcessPendingMessages() override {}
  DateTime Now() override { return {}; }
  std::string DateTimeText(const DateTime&) override { return {}; }
  std::uint32_t RandomSeed() override { return 1; }
  void ShowMessageBox(const std::string&) override {}
  std::shared_ptr<FileSystem> CreateFileSystem() override { return files; }
  std::shared_ptr<LateBoundObject> CreateObject(const std::string&) override { return trace; }
  std::shared_ptr<DiscardingTrace> trace;
  std::shared_ptr<FileSystem> files = std::make_shared<DiscardingFiles>();
};

struct FreeCoefficients : MassCalCoefficients {
  double GetBinWidth() override { return 0.25; }
  CoefficientRecord GetCoefficientRecord() override { return {kAPerNs, kT0Ns}; }
  double TimeToMass(double time_ns) override {
    return kAPerNs * (time_ns - kT0Ns) * kAPerNs * (time_ns - kT0Ns);
  }
  double MassToTime(double mass) override { return kT0Ns + std::sqrt(mass) / kAPerNs; }
  void Calibrate(const BoundedArray<double>&, const BoundedArray<double>&) override {}
  CalInfo GetCalInfo() override { return {}; }
  void SetCalInfo(const CalInfo&) override {}
};

struct FreeTable : SetpointTable {
  Variant GetSetpoint(std::int32_t) override { return Variant(std::int16_t{0}); }
  void SetSetpoint(std::int32_t, ValueType, const Variant&) override {}
  Variant GetCurrentValue(std::int32_t) override { return Variant(std::int16_t{0}); }
};

struct FreeDictionary : DataDictionary {
  void Initialize() override {}
  std::shared_ptr<SetpointTable> GetSetpointTable() override { return table; }
  std::shared_ptr<SpectrumDisplay> GetConfigObject() override { return nullptr; }
  std::string GetFlagKey() override { return {}; }
  double GetTimeValue() override { return 0.0; }
  std::int32_t GetAcqStartTime() override { return 0; }
  std::int32_t GetAcqEndTime() override { return 100; }
  std::shared_ptr<StatusReader> GetStatusReader() override { return nullptr; }
  std::string GetModeName() override { return {}; }
  bool ModeUsesRfSetpoints(const std::string&) override { return false; }
  std::shared_ptr<SetpointTable> table = std::make_shared<FreeTable>();
};

struct FreeController : AcqController {
  explicit FreeController(BoundedArray<double> the_masses) : masses(std::move(the_masses)) {}
  void InitializeController(std::int32_t) override {}
  void InitializeAcquisition(std::int32_t) override {}
  Variant PrepareSetpointAccess() override { return {}; }
  Variant PrepareSetpointTable() override { return {}; }
  std::int16_t IsAbortRequested() override { return 0; }
  double GetScaleFactor() override { return 1.0; }
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override { return coefficients; }
  double GetCurrentA() override { return kAPerNs; }
  std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override {
    return coefficients;
  }
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>&) override {}
  void SetLikelyAAndT0(double, double) override {}
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override {
    const BoundedArray<double> columns(0, values.UBound(2));
    return {columns, columns};
  }
  void EndAIC() override {}
  Variant ReadSetpoint(std::int32_t) override { return Variant(std::int16_t{0}); }
  std::string GetConfigurationName() override { return {}; }
  BoundedArray<double> GetCalibrantMasses(std::int32_t, const std::string&,
                                          const std::string&) override {
    return masses;
  }
  BoundedArray<double> masses;
  std::shared_ptr<MassCalCoefficients> coefficients = std::make_shared<FreeCoefficients>();
};

// What it takes to copy the tables that the parser hands over.
struct ParserTime {
  bool is_taken = false;
  std::chrono::steady_clock::duration spent{};
};

struct FreeParser : SpecParser {
  FreeParser(PeakAttribsTable the_answer, ParserTime& the_time)
      : answer(std::move(the_answer)), time(the_time) {}
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant&, double) override {
    if (!time.is_taken) return answer;
    const auto start = std::chrono::steady_clock::now();
    PeakAttribsTable copy = answer;
    time.spent += std::chrono::steady_clock::now() - start;
    return copy;
  }
  double GetPeakAttribute(PeakCalculationtype, double, double) override { return 0.0; }
  void FindPeaks(double, double, std::int32_t, std::int32_t&, std::shared_ptr<PeakList>&) override {
  }
  bool ShouldAvoidAIC(const Variant&, double&) override { return true; }
  void SearchTargetAbundance(double, double) override {}
  PeakAttribsTable answer;
  ParserTime& time;
};

// The estimate of the likely A is skipped: it takes one spectrum, whatever their number.
struct FreeFlags : TuneFlags {
  explicit FreeFlags(const bool& collects_by_measurement)
      : by_measurement(collects_by_measurement) {}
  std::string GetFlag(const std::string& key, std::int32_t) override {
    if (key == "AIC_MinimizeImpactOfDriftOnCalibPointCollection") {
      return by_measurement ? "Yes" : "No";
    }
    if (key == "UseCalibrationAlgInMTObj" || key == "SkipCalcLikelyABeforeCalibration") {
      return "Yes";
    }
    if (key == "Calibration_VerifyCalibCoefficients") return "No";
    return key.rfind("SkipCalcLikelyABeforeCalibration_", 0) == 0 ? "1" : "";
  }
  const bool& by_measurement;
};

// A ramp of a single step, at which every mass is below the maximum; no waits.
struct FreeSettings : CalibSettings {
  void GetValue(const std::string&, const std::string& key, std::int32_t, double& value) override {
    if (key == "AIC_RF_Step" || key == "AIC_TargetMaxAb") value = 1.0;
  }
};

struct FreeLogFiles : CalibLogFiles {
  std::shared_ptr<TextStream> OpenLogFile(const std::string&, const std::string&,
                                          const std::string&) override {
    return stream;
  }
  std::string JoinAsCsvLine(const std::array<Variant, 6>&) override { return {}; }
  std::shared_ptr<TextStream> stream = std::make_shared<DiscardingStream>();
};

struct FreePaths : InstrumentPaths {
  std::string GetBaseFolder() override { return {}; }
};

// Calibrants from m/z 100 on, 10 apart.
struct FreeInstrument : InstrumentFactory {
  explicit FreeInstrument(std::int32_t n_masses) : answer({0, 1}, {0, n_masses - 1}) {
    std::vector<double> values;
    for (std::int32_t i = 0; i < n_masses; ++i) {
      const double mass = 100.0 + 10.0 * i;
      values.push_back(mass);
      answer(0, i).time = kT0Ns + std::sqrt(mass) / kAPerNs + 0.001 * i;
      answer(1, i).time = mass;
    }
    masses = Variant(BoundedArray<double>(std::move(values)));
  }

  std::shared_ptr<DataDictionary> CreateDataDictionary() override {
    return std::make_shared<FreeDictionary>();
  }
  std::shared_ptr<AcqController> CreateAcqController() override {
    return std::make_shared<FreeController>(*masses.As<Variant::DoubleArray>());
  }
  std::shared_ptr<SpecParser> CreateSpecParser() override {
    return std::make_shared<FreeParser>(answer, parser_time);
  }
  std::shared_ptr<CalibLogFiles> CreateCalibLogFiles() override {
    return std::make_shared<FreeLogFiles>();
  }
  std::shared_ptr<TuneFlags> CreateTuneFlags() override {
    return std::make_shared<FreeFlags>(by_measurement);
  }
  std::shared_ptr<CalibSettings> CreateCalibSettings() override {
    return std::make_shared<FreeSettings>();
  }
  std::shared_ptr<InstrumentPaths> GetInstrumentPaths() override {
    return std::make_shared<FreePaths>();
  }
  std::shared_ptr<FirmwareLibrary> GetFirmwareLibrary() override { return nullptr; }
  std::shared_ptr<PeakList> CreatePeakList() override { return nullptr; }
  std::shared_ptr<MassCalCoefficients> CreateMassCalCoefficients() override {
    return std::make_shared<FreeCoefficients>();
  }

  Variant masses;
  PeakAttribsTable answer;
  bool by_measurement = false;
  ParserTime parser_time;
};

}  // namespace tof::bench
