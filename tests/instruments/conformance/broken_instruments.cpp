#include "tests/instruments/conformance/broken_instruments.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#include "component/automation/convert.h"
#include "component/calibrator/instrument.h"
#include "instruments/description/description_reader.h"

namespace tof::conformance {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

[[noreturn]] void Fail() {
  throw AutomationError(440, "The instrument is broken");
}

// The setpoint that abundance-immune calibration moves on the instrument that is spoilt here.
std::int32_t RfId() {
  static const double kId =
      description::BuiltInDescription().settings.at("Calibration").at("AIC_SetpointToUse");
  return ToInt32(kId);
}

// DataDictionary

struct DictionaryThatDoesNotInitialize : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  void Initialize() override { Fail(); }
};

struct DictionaryWithoutTable : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  std::shared_ptr<SetpointTable> GetSetpointTable() override { return nullptr; }
};

struct DictionaryWithoutFlagKey : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  std::string GetFlagKey() override { return {}; }
};

struct DictionaryWithoutTime : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  double GetTimeValue() override { return kNaN; }
};

struct DictionaryWithEmptyWindow : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  std::int32_t GetAcqStartTime() override { return GetAcqEndTime(); }
};

struct DictionaryThatStartsLate : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  std::int32_t GetAcqStartTime() override { return 30; }
};

struct DictionaryInUnknownMode : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  std::string GetModeName() override { return "unheard of"; }
};

// SpectrumDisplay and StatusReader

struct DisplayThatStaysFrozen : ForwardingSpectrumDisplay {
  using ForwardingSpectrumDisplay::ForwardingSpectrumDisplay;
  void SetDisplayUpdate(bool live) override {
    if (live) Fail();
    inner_->SetDisplayUpdate(live);
  }
};

struct ReadyStateInWords : ForwardingStatusReader {
  using ForwardingStatusReader::ForwardingStatusReader;
  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override {
    if (name == "ACTUAL.NDR[NRDYSTATE]") return "ready";
    return inner_->Read(name, type, zero);
  }
};

struct RunStateUnknown : ForwardingStatusReader {
  using ForwardingStatusReader::ForwardingStatusReader;
  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override {
    if (name.find("RUNSTATE") != std::string::npos) Fail();
    return inner_->Read(name, type, zero);
  }
};

// SetpointTable

bool IsKnown(SetpointTable& table, std::int32_t id) {
  try {
    table.GetSetpoint(id);
    return true;
  } catch (const AutomationError&) {
    return false;
  }
}

struct TableWithout119 : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  Variant GetSetpoint(std::int32_t id) override {
    if (id == setpoint::k119) Fail();
    return inner_->GetSetpoint(id);
  }
};

struct TableThatTurnsBooleansRound : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override {
    const bool is_boolean = type == ValueType::kBoolean;
    inner_->SetSetpoint(id, type, is_boolean ? Variant(!ToBool(value)) : value);
  }
};

struct FragmentorInMillivolts : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override {
    const bool scaled = id == setpoint::kFragmentor;
    inner_->SetSetpoint(id, type, scaled ? Variant(ToDouble(value) * 1000.0) : value);
  }
};

struct RfVoltageReadWithAnOffset : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  Variant GetSetpoint(std::int32_t id) override {
    const Variant value = inner_->GetSetpoint(id);
    return id == RfId() ? Variant(ToDouble(value) + 0.2) : value;
  }
};

struct CurrentValueWithItsUnit : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  Variant GetCurrentValue(std::int32_t id) override {
    return ToText(inner_->GetCurrentValue(id)) + " V";
  }
};

struct UnknownSetpointReadsAsZero : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  Variant GetSetpoint(std::int32_t id) override {
    return IsKnown(*inner_, id) ? inner_->GetSetpoint(id) : Variant(0.0);
  }
};

struct SetpointMinusOneReadsAsZero : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  Variant GetSetpoint(std::int32_t id) override {
    return id == -1 ? Variant(0.0) : inner_->GetSetpoint(id);
  }
};

struct UnknownSetpointIsWritten : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override {
    if (IsKnown(*inner_, id)) inner_->SetSetpoint(id, type, value);
  }
};

struct SetpointErrorWithoutText : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  Variant GetSetpoint(std::int32_t id) override {
    if (!IsKnown(*inner_, id)) throw AutomationError(5, "");
    return inner_->GetSetpoint(id);
  }
};

struct SetpointErrorWithoutNumber : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  Variant GetSetpoint(std::int32_t id) override {
    if (!IsKnown(*inner_, id)) throw AutomationError(0, "No such setpoint");
    return inner_->GetSetpoint(id);
  }
};

// AcqController

struct ControllerThatDoesNotInitialize : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  void InitializeAcquisition(std::int32_t) override { Fail(); }
};

struct ControllerThatDoesNotPrepare : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  Variant PrepareSetpointTable() override { Fail(); }
};

struct AbortStillStanding : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  std::int16_t IsAbortRequested() override { return -1; }
};

struct AbortUnseen : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  std::int16_t IsAbortRequested() override { return 0; }
};

struct ScaleFactorOfZero : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  double GetScaleFactor() override { return 0.0; }
};

struct NoCurrentCoefficients : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override { return nullptr; }
};

// Hands out one object until something about the coefficients is set.
struct CoefficientsHandedOutThemselves : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override {
    if (!shared_) shared_ = inner_->GetCurrentMassCalObject();
    return shared_;
  }
  double GetCurrentA() override {
    return shared_ && !seeded_ ? shared_->GetCoefficientRecord()[0] : inner_->GetCurrentA();
  }
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override {
    inner_->SetCalibCoefficients(coefficients);
    shared_ = nullptr;
    seeded_ = false;
  }
  void SetLikelyAAndT0(double a_per_us, double t0_us) override {
    inner_->SetLikelyAAndT0(a_per_us, t0_us);
    shared_ = nullptr;
    seeded_ = true;
  }

 private:
  std::shared_ptr<MassCalCoefficients> shared_;
  bool seeded_ = false;
};

struct T0OffByANanosecond : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  CoefficientRecord GetCoefficientRecord() override {
    CoefficientRecord record = inner_->GetCoefficientRecord();
    record[1] += 1.0;
    return record;
  }
};

struct CoefficientsPutInForceAskew : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override {
    inner_->SetCalibCoefficients(std::make_shared<T0OffByANanosecond>(coefficients));
  }
};

struct CurrentAPerMicrosecond : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  double GetCurrentA() override { return inner_->GetCurrentA() * 1000.0; }
};

struct StartingValuesTakenPerNanosecond : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  void SetLikelyAAndT0(double a_per_us, double t0_us) override {
    inner_->SetLikelyAAndT0(a_per_us * 1000.0, t0_us / 1000.0);
  }
};

struct StartingValueAsCurrentA : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  double GetCurrentA() override { return start_.value_or(inner_->GetCurrentA()); }
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override {
    inner_->SetCalibCoefficients(coefficients);
    start_.reset();
  }
  void SetLikelyAAndT0(double a_per_us, double t0_us) override {
    inner_->SetLikelyAAndT0(a_per_us, t0_us);
    start_ = a_per_us / 1000.0;
  }

 private:
  std::optional<double> start_;
};

struct FittedCoefficients : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    inner_->Calibrate(masses, times_ns);
    fitted = true;
  }
  bool fitted = false;
};

// Ends the starting values only for coefficients that no one has fitted.
struct StartingValuesThatOutliveAFit : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override {
    return std::make_shared<FittedCoefficients>(inner_->GetCurrentMassCalObject());
  }
  void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) override {
    inner_->SetCalibCoefficients(coefficients);
    const auto given = std::dynamic_pointer_cast<FittedCoefficients>(coefficients);
    if (start_ && given && given->fitted) {
      inner_->SetLikelyAAndT0(start_->first, start_->second);
    } else {
      start_.reset();
    }
  }
  void SetLikelyAAndT0(double a_per_us, double t0_us) override {
    inner_->SetLikelyAAndT0(a_per_us, t0_us);
    start_ = {a_per_us, t0_us};
  }

 private:
  std::optional<std::pair<double, double>> start_;
};

struct EmptyRecord : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  CoefficientRecord GetCoefficientRecord() override { return {}; }
};

struct EmptyDefaults : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override {
    return std::make_shared<EmptyRecord>(inner_->GetDefaultCalibCoefficients());
  }
};

struct AveragesFromIndexOne : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override {
    ColumnStatistics statistics = inner_->GetColumnStatistics(values);
    const BoundedArray<double> from_zero = statistics.averages;
    statistics.averages.ReDim(1, from_zero.UBound() + 1);
    std::copy(from_zero.begin(), from_zero.end(), statistics.averages.begin());
    return statistics;
  }
};

struct DeviationOfThePopulation : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override {
    const double n = values.UBound(1) - values.LBound(1) + 1.0;
    ColumnStatistics statistics = inner_->GetColumnStatistics(values);
    for (double& deviation : statistics.standard_deviations) deviation *= std::sqrt((n - 1.0) / n);
    return statistics;
  }
};

struct DeviationOfOneIsNotANumber : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) override {
    ColumnStatistics statistics = inner_->GetColumnStatistics(values);
    if (values.UBound(1) == values.LBound(1)) {
      for (double& deviation : statistics.standard_deviations) deviation = kNaN;
    }
    return statistics;
  }
};

struct ReadsOnlyOnceInitialized : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  void InitializeAcquisition(std::int32_t zero) override {
    inner_->InitializeAcquisition(zero);
    initialized_ = true;
  }
  Variant ReadSetpoint(std::int32_t id) override {
    if (!initialized_) Fail();
    return inner_->ReadSetpoint(id);
  }

 private:
  bool initialized_ = false;
};

constexpr std::int32_t kUnknownId = -1;

struct ControllerReadsAnything : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  Variant ReadSetpoint(std::int32_t id) override {
    return id == kUnknownId ? Variant() : inner_->ReadSetpoint(id);
  }
};

struct ControllerRaisesAForeignException : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  Variant ReadSetpoint(std::int32_t id) override {
    if (id == kUnknownId) throw std::out_of_range("no such id");
    return inner_->ReadSetpoint(id);
  }
};

struct CalibrantsFromTheHeaviest : ForwardingAcqController {
  using ForwardingAcqController::ForwardingAcqController;
  BoundedArray<double> GetCalibrantMasses(std::int32_t setpoint117, const std::string& mode,
                                          const std::string& configuration) override {
    auto masses = inner_->GetCalibrantMasses(setpoint117, mode, configuration);
    std::reverse(masses.begin(), masses.end());
    return masses;
  }
};

// MassCalCoefficients

struct BinWidthOfZero : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  double GetBinWidth() override { return 0.0; }
};

struct RecordThatLosesItsEnd : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  void SetCalInfo(const CalInfo& info) override {
    CalInfo kept = info;
    kept.unused36 = {};
    inner_->SetCalInfo(kept);
  }
};

struct MassToTimeIsOff : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  double MassToTime(double mass) override { return inner_->MassToTime(mass) + 1.0; }
};

struct MassStopsGrowing : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  double TimeToMass(double time_ns) override {
    return inner_->TimeToMass(std::min(time_ns, 69'000.0));
  }
};

struct MassFallsAtTheEndOfTheAcquisition : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  double TimeToMass(double time_ns) override {
    return time_ns < 72'000.0 ? inner_->TimeToMass(time_ns) : 0.0;
  }
};

bool HasALostPeak(const BoundedArray<double>& times_ns) {
  return std::any_of(times_ns.begin(), times_ns.end(),
                     [](double time) { return std::isnan(time); });
}

struct FitThatDoesNothing : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    if (HasALostPeak(times_ns) || masses.size() < 2) inner_->Calibrate(masses, times_ns);
  }
};

struct RecordFromBeforeTheFit : ForwardingCoefficients {
  explicit RecordFromBeforeTheFit(std::shared_ptr<MassCalCoefficients> coefficients)
      : ForwardingCoefficients(std::move(coefficients)), record_(inner_->GetCoefficientRecord()) {}
  CoefficientRecord GetCoefficientRecord() override { return record_; }

 private:
  CoefficientRecord record_;
};

struct LostPeakIsIgnored : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    if (!HasALostPeak(times_ns)) inner_->Calibrate(masses, times_ns);
  }
};

struct SinglePointIsIgnored : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    if (masses.size() > 1) inner_->Calibrate(masses, times_ns);
  }
};

// Fits what is left without the lost peak before it complains.
struct RefusedFitLeavesItsMark : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    if (HasALostPeak(times_ns)) {
      std::vector<double> kept_masses;
      std::vector<double> kept_times;
      for (std::int32_t i = times_ns.LBound(); i <= times_ns.UBound(); ++i) {
        if (std::isnan(times_ns(i))) continue;
        kept_masses.push_back(masses(i));
        kept_times.push_back(times_ns(i));
      }
      inner_->Calibrate(BoundedArray<double>(kept_masses), BoundedArray<double>(kept_times));
    }
    inner_->Calibrate(masses, times_ns);
  }
};

struct FitErrorWithoutText : ForwardingCoefficients {
  using ForwardingCoefficients::ForwardingCoefficients;
  void Calibrate(const BoundedArray<double>& masses,
                 const BoundedArray<double>& times_ns) override {
    try {
      inner_->Calibrate(masses, times_ns);
    } catch (const AutomationError& error) {
      throw AutomationError(error.number(), "");
    }
  }
};

// PeakList

struct ListThatKeepsItsRecords : ForwardingPeakList {
  using ForwardingPeakList::ForwardingPeakList;
  void Initialize() override {}
};

struct ListWithoutDuplicates : ForwardingPeakList {
  using ForwardingPeakList::ForwardingPeakList;
  void Add(const PeakRecord& record) override {
    const std::int32_t count = inner_->Count();
    if (count == 0 || inner_->GetRecord(count - 1) != record) inner_->Add(record);
  }
};

struct ListOfPositionsAndHeights : ForwardingPeakList {
  using ForwardingPeakList::ForwardingPeakList;
  void Add(const PeakRecord& record) override {
    PeakRecord kept;
    kept.position = record.position;
    kept.height = record.height;
    inner_->Add(kept);
  }
};

struct ListThatIsNotSet : ForwardingPeakList {
  using ForwardingPeakList::ForwardingPeakList;
  void SetRecord(std::int32_t, const PeakRecord&) override {}
};

struct ListWithoutEnds : ForwardingPeakList {
  using ForwardingPeakList::ForwardingPeakList;
  PeakRecord GetRecord(std::int32_t index) override {
    return index >= 0 && index < inner_->Count() ? inner_->GetRecord(index) : PeakRecord{};
  }
};

struct ListThatRaisesAnotherError : ForwardingPeakList {
  using ForwardingPeakList::ForwardingPeakList;
  PeakRecord GetRecord(std::int32_t index) override {
    if (index < 0 || index >= inner_->Count()) throw AutomationError(5, "no such record");
    return inner_->GetRecord(index);
  }
};

struct ListEmptiedByPreparing : ForwardingPeakList {
  using ForwardingPeakList::ForwardingPeakList;
  void PreparePeakList(std::int32_t, std::int32_t) override { inner_->Initialize(); }
};

// SpecParser

// Changes the table behind each parsed spectrum.
struct ParserWithOtherTable : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    PeakAttribsTable table = inner_->GetCalibrantPeakAttributes(masses, window);
    for (std::int32_t k = table.LBound(2); k <= table.UBound(2); ++k) {
      Change(AsDoubleArray(masses)(k), table(0, k), table(1, k));
    }
    return table;
  }

 private:
  virtual void Change(double mass, PeakAttribs& row0, PeakAttribs& row1) = 0;
};

struct LastColumnMissing : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    const PeakAttribsTable whole = inner_->GetCalibrantPeakAttributes(masses, window);
    PeakAttribsTable table({0, 1}, {0, whole.UBound(2) - 1});
    for (std::int32_t k = 0; k < whole.UBound(2); ++k) {
      for (const std::int32_t row : {0, 1}) table(row, k) = whole(row, k);
    }
    return table;
  }
};

struct ParserThatFindsNothing : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double, PeakAttribs& row0, PeakAttribs& row1) override {
    row0 = row1 = PeakAttribs{};
    row0.time = row1.time = kNaN;
  }
};

struct FlightTimesInMicroseconds : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double, PeakAttribs& row0, PeakAttribs&) override { row0.time /= 1000.0; }
};

struct NoPeakWidth : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double, PeakAttribs& row0, PeakAttribs&) override { row0.attribute48 = kNaN; }
};

struct FlightTimeInBothRows : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double, PeakAttribs& row0, PeakAttribs& row1) override { row1.time = row0.time; }
};

struct MassErrorTheOtherWayRound : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double, PeakAttribs&, PeakAttribs& row1) override {
    row1.attribute32 = -row1.attribute32;
  }
};

struct AbundanceInRow0Alone : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double, PeakAttribs&, PeakAttribs& row1) override { row1.abundance = 0.0; }
};

struct ParserThatSorts : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    BoundedArray<double> sorted = AsDoubleArray(masses);
    std::sort(sorted.begin(), sorted.end());
    return inner_->GetCalibrantPeakAttributes(Variant(sorted), window);
  }
};

constexpr double kHeaviestThereIs = 1800.0;

struct MissingMassWithAbundance : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double mass, PeakAttribs& row0, PeakAttribs& row1) override {
    if (mass > kHeaviestThereIs) row0.abundance = row1.abundance = 1000.0;
  }
};

struct MissingMassAtTimeZero : ParserWithOtherTable {
  using ParserWithOtherTable::ParserWithOtherTable;
  void Change(double mass, PeakAttribs& row0, PeakAttribs& row1) override {
    if (mass > kHeaviestThereIs) row0.time = row1.time = 0.0;
  }
};

struct NewestSpectrumOnAnotherScale : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override {
    return inner_->GetPeakAttribute(kind, mass, tolerance) / 250.0;
  }
};

struct NoPeakIsAnError : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override {
    const double abundance = inner_->GetPeakAttribute(kind, mass, tolerance);
    if (abundance == 0.0) Fail();
    return abundance;
  }
};

struct SearchThatFindsNoPeaks : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  void FindPeaks(double start_ns, double end_ns, std::int32_t sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    inner_->FindPeaks(start_ns, end_ns, sought, count, list);
    list->Initialize();
    count = 0;
  }
};

struct SearchWithoutAList : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  void FindPeaks(double, double, std::int32_t, std::int32_t& count,
                 std::shared_ptr<PeakList>&) override {
    count = 0;
  }
};

struct SearchForAllPeaks : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  void FindPeaks(double start_ns, double end_ns, std::int32_t, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    constexpr std::int32_t kAll = 20;
    inner_->FindPeaks(start_ns, end_ns, kAll, count, list);
  }
};

struct CountOfThoseSought : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  void FindPeaks(double start_ns, double end_ns, std::int32_t sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    inner_->FindPeaks(start_ns, end_ns, sought, count, list);
    count = sought;
  }
};

struct SearchWithoutLimits : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  void FindPeaks(double, double, std::int32_t sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    inner_->FindPeaks(0.0, 100'000.0, sought, count, list);
  }
};

struct PeaksWithoutHeight : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  void FindPeaks(double start_ns, double end_ns, std::int32_t sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    inner_->FindPeaks(start_ns, end_ns, sought, count, list);
    for (std::int32_t i = 0; i < list->Count(); ++i) {
      PeakRecord record = list->GetRecord(i);
      record.height = 0.0;
      list->SetRecord(i, record);
    }
  }
};

struct WidthOfZero : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  bool ShouldAvoidAIC(const Variant& masses, double& width) override {
    width = 0.0;
    double own = 0.0;
    return inner_->ShouldAvoidAIC(masses, own);
  }
};

struct SearchThatStaysWhereItIs : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  void SearchTargetAbundance(double, double) override {}
};

// TuneFlags and CalibSettings

struct AbsentFlagIsNo : ForwardingTuneFlags {
  using ForwardingTuneFlags::ForwardingTuneFlags;
  std::string GetFlag(const std::string& key, std::int32_t minus_one) override {
    const std::string text = inner_->GetFlag(key, minus_one);
    return text.empty() ? "No" : text;
  }
};

struct StartingT0WithAComma : ForwardingTuneFlags {
  using ForwardingTuneFlags::ForwardingTuneFlags;
  std::string GetFlag(const std::string& key, std::int32_t minus_one) override {
    if (key == "Calibration_t0ToUseToStartLookingforA_usec") return "0,305";
    return inner_->GetFlag(key, minus_one);
  }
};

struct MissingSettingIsZero : ForwardingCalibSettings {
  using ForwardingCalibSettings::ForwardingCalibSettings;
  void GetValue(const std::string& section, const std::string& key, std::int32_t zero,
                double& value) override {
    value = 0.0;
    inner_->GetValue(section, key, zero, value);
  }
};

struct SettingsWithOneZero : ForwardingCalibSettings {
  using ForwardingCalibSettings::ForwardingCalibSettings;
  void GetValue(const std::string& section, const std::string& key, std::int32_t zero,
                double& value) override {
    inner_->GetValue(section, key, zero, value);
    if (key == ZeroKey()) value = 0.0;
  }

 private:
  virtual const char* ZeroKey() const = 0;
};

struct NoLimitForA : SettingsWithOneZero {
  using SettingsWithOneZero::SettingsWithOneZero;
  const char* ZeroKey() const override { return "TargetAPercentError"; }
};

struct BandWithoutMaximum : SettingsWithOneZero {
  using SettingsWithOneZero::SettingsWithOneZero;
  const char* ZeroKey() const override { return "AIC_TargetMaxAb"; }
};

struct RangeWithoutStep : SettingsWithOneZero {
  using SettingsWithOneZero::SettingsWithOneZero;
  const char* ZeroKey() const override { return "AIC_RF_Step"; }
};

// CalibLogFiles and InstrumentPaths

struct NoLogFile : ForwardingCalibLogFiles {
  using ForwardingCalibLogFiles::ForwardingCalibLogFiles;
  std::shared_ptr<TextStream> OpenLogFile(const std::string&, const std::string&,
                                          const std::string&) override {
    return nullptr;
  }
};

struct ClosesOnce : ForwardingTextStream {
  using ForwardingTextStream::ForwardingTextStream;
  void Close() override {
    if (closed_) Fail();
    closed_ = true;
    inner_->Close();
  }

 private:
  bool closed_ = false;
};

struct JoinsBySemicolon : ForwardingCalibLogFiles {
  using ForwardingCalibLogFiles::ForwardingCalibLogFiles;
  std::string JoinAsCsvLine(const std::array<Variant, 6>& values) override {
    std::string line = inner_->JoinAsCsvLine(values);
    std::replace(line.begin(), line.end(), ',', ';');
    return line;
  }
};

struct FolderWithSeparator : ForwardingInstrumentPaths {
  using ForwardingInstrumentPaths::ForwardingInstrumentPaths;
  std::string GetBaseFolder() override { return inner_->GetBaseFolder() + "\\"; }
};

// FirmwareLibrary

struct FirmwareBeyondItsLimits : ForwardingFirmwareLibrary {
  using ForwardingFirmwareLibrary::ForwardingFirmwareLibrary;
  float BinarySearchForTargetAb(std::int32_t, float, float, float, float, float, float,
                                std::int32_t, float, float) override {
    return 161.0F;
  }
};

struct FirmwareThatStaysWhereItIs : ForwardingFirmwareLibrary {
  using ForwardingFirmwareLibrary::ForwardingFirmwareLibrary;
  float BinarySearchForTargetAb(std::int32_t, float, float, float, float, float, float,
                                std::int32_t, float, float) override {
    return 75.0F;
  }
};

template <class Wrapper>
void Using(Wrappers& wrappers, fakes::Journal&) {
  wrappers.Use<Wrapper>();
}

template <class Interface>
void WithoutAny(Wrappers& wrappers, fakes::Journal&) {
  wrappers.GiveNone<Interface>();
}

// As a host does whose folder isn't there.
void WithoutLogFolder(Wrappers&, fakes::Journal& host_calls) {
  host_calls.fail_operation = "FileSystem.OpenForAppending";
}

}  // namespace

std::vector<BrokenInstrument> BrokenInstruments() {
  return {
      {"InstrumentFactory.creates-every-collaborator", WithoutAny<TuneFlags>},
      {"InstrumentFactory.gives-the-shared-objects", WithoutAny<FirmwareLibrary>},
      {"InstrumentFactory.creates-library-objects", WithoutAny<PeakList>},
      {"DataDictionary.initializes", Using<DictionaryThatDoesNotInitialize>},
      {"DataDictionary.gives-the-setpoint-table", Using<DictionaryWithoutTable>},
      {"DataDictionary.flag-key-is-not-empty", Using<DictionaryWithoutFlagKey>},
      {"DataDictionary.time-is-a-number", Using<DictionaryWithoutTime>},
      {"DataDictionary.acquisition-window-has-a-length", Using<DictionaryWithEmptyWindow>},
      {"DataDictionary.acquisition-window-holds-the-calibrants", Using<DictionaryThatStartsLate>},
      {"DataDictionary.present-mode-is-known", Using<DictionaryInUnknownMode>},
      {"SpectrumDisplay.freezes-and-goes-live", Using<DisplayThatStaysFrozen>},
      {"StatusReader.reads-the-ready-state", Using<ReadyStateInWords>},
      {"StatusReader.reads-the-run-state", Using<RunStateUnknown>},
      {"SetpointTable.has-the-setpoints-of-every-calibration", Using<TableWithout119>},
      {"SetpointTable.saved-setpoints-are-written-back", Using<TableThatTurnsBooleansRound>},
      {"SetpointTable.tune-setpoints-are-written-back", Using<FragmentorInMillivolts>},
      {"SetpointTable.rf-voltage-is-read-back", Using<RfVoltageReadWithAnOffset>},
      {"SetpointTable.current-rf-value-is-a-number", Using<CurrentValueWithItsUnit>},
      {"SetpointTable.unknown-id-cannot-be-read", Using<UnknownSetpointReadsAsZero>},
      {"SetpointTable.unknown-id-cannot-be-read", Using<SetpointMinusOneReadsAsZero>},
      {"SetpointTable.unknown-id-cannot-be-written", Using<UnknownSetpointIsWritten>},
      {"SetpointTable.errors-carry-number-and-text", Using<SetpointErrorWithoutText>},
      {"SetpointTable.errors-carry-number-and-text", Using<SetpointErrorWithoutNumber>},
      {"AcqController.initializes", Using<ControllerThatDoesNotInitialize>},
      {"AcqController.prepares-setpoint-access", Using<ControllerThatDoesNotPrepare>},
      {"AcqController.no-abort-unless-asked", Using<AbortStillStanding>},
      {"AcqController.abort-is-seen", Using<AbortUnseen>},
      {"AcqController.scale-factor-is-positive", Using<ScaleFactorOfZero>},
      {"AcqController.current-coefficients-are-usable", Using<NoCurrentCoefficients>},
      {"AcqController.current-coefficients-are-a-copy", Using<CoefficientsHandedOutThemselves>},
      {"AcqController.coefficients-are-put-in-force", Using<CoefficientsPutInForceAskew>},
      {"AcqController.current-a-is-that-in-force", Using<CurrentAPerMicrosecond>},
      {"AcqController.starting-values-seed-the-next-copy", Using<StartingValuesTakenPerNanosecond>},
      {"AcqController.starting-values-leave-current-a", Using<StartingValueAsCurrentA>},
      {"AcqController.new-coefficients-end-the-starting-values",
       Using<StartingValuesThatOutliveAFit>},
      {"AcqController.default-coefficients-are-usable", Using<EmptyDefaults>},
      {"AcqController.statistics-are-of-columns", Using<AveragesFromIndexOne>},
      {"AcqController.deviation-is-that-of-a-sample", Using<DeviationOfThePopulation>},
      {"AcqController.deviation-of-one-spectrum-is-zero", Using<DeviationOfOneIsNotANumber>},
      {"AcqController.fresh-controller-reads-setpoints", Using<ReadsOnlyOnceInitialized>},
      {"AcqController.unknown-setpoint-is-an-error", Using<ControllerReadsAnything>},
      {"AcqController.errors-carry-number-and-text", Using<ControllerRaisesAForeignException>},
      {"AcqController.calibrant-masses-are-usable", Using<CalibrantsFromTheHeaviest>},
      {"MassCalCoefficients.bin-width-is-positive", Using<BinWidthOfZero>},
      {"MassCalCoefficients.information-record-is-carried-through", Using<RecordThatLosesItsEnd>},
      {"MassCalCoefficients.time-and-mass-are-inverse", Using<MassToTimeIsOff>},
      {"MassCalCoefficients.mass-grows-with-time", Using<MassStopsGrowing>},
      {"MassCalCoefficients.mass-grows-with-time", Using<MassFallsAtTheEndOfTheAcquisition>},
      {"MassCalCoefficients.fit-follows-the-calibrants", Using<FitThatDoesNothing>},
      {"MassCalCoefficients.record-holds-a-and-t0", Using<RecordFromBeforeTheFit>},
      {"MassCalCoefficients.lost-peak-is-refused", Using<LostPeakIsIgnored>},
      {"MassCalCoefficients.single-point-is-refused", Using<SinglePointIsIgnored>},
      {"MassCalCoefficients.refused-fit-changes-nothing", Using<RefusedFitLeavesItsMark>},
      {"MassCalCoefficients.errors-carry-number-and-text", Using<FitErrorWithoutText>},
      {"PeakList.initialize-empties", Using<ListThatKeepsItsRecords>},
      {"PeakList.counts-what-is-added", Using<ListWithoutDuplicates>},
      {"PeakList.gives-records-back", Using<ListOfPositionsAndHeights>},
      {"PeakList.sets-a-record", Using<ListThatIsNotSet>},
      {"PeakList.index-outside-is-an-error", Using<ListWithoutEnds>},
      {"PeakList.index-outside-is-an-error", Using<ListThatRaisesAnotherError>},
      {"PeakList.preparing-keeps-peaks", Using<ListEmptiedByPreparing>},
      {"SpecParser.parses-every-mass", Using<LastColumnMissing>},
      {"SpecParser.finds-calibrants", Using<ParserThatFindsNothing>},
      {"SpecParser.row-0-carries-the-flight-time", Using<FlightTimesInMicroseconds>},
      {"SpecParser.row-0-carries-a-peak-width", Using<NoPeakWidth>},
      {"SpecParser.row-1-carries-the-assigned-mass", Using<FlightTimeInBothRows>},
      {"SpecParser.row-1-carries-the-mass-error", Using<MassErrorTheOtherWayRound>},
      {"SpecParser.both-rows-carry-the-abundance", Using<AbundanceInRow0Alone>},
      {"SpecParser.masses-keep-their-order", Using<ParserThatSorts>},
      {"SpecParser.missing-mass-has-no-abundance", Using<MissingMassWithAbundance>},
      {"SpecParser.missing-mass-has-no-time", Using<MissingMassAtTimeZero>},
      {"SpecParser.newest-spectrum-shows-the-same-abundance", Using<NewestSpectrumOnAnotherScale>},
      {"SpecParser.no-peak-is-no-abundance", Using<NoPeakIsAnError>},
      {"SpecParser.finds-peaks", Using<SearchThatFindsNoPeaks>},
      {"SpecParser.finds-peaks", Using<SearchWithoutAList>},
      {"SpecParser.finds-at-most-the-number-sought", Using<SearchForAllPeaks>},
      {"SpecParser.count-is-that-of-the-list", Using<CountOfThoseSought>},
      {"SpecParser.peaks-lie-in-the-range", Using<SearchWithoutLimits>},
      {"SpecParser.peaks-have-a-height", Using<PeaksWithoutHeight>},
      {"SpecParser.avoiding-aic-keeps-the-width-usable", Using<WidthOfZero>},
      {"SpecParser.search-ends-in-the-band", Using<SearchThatStaysWhereItIs>},
      {"TuneFlags.absent-flag-switches-nothing", Using<AbsentFlagIsNo>},
      {"TuneFlags.starting-t0-is-a-number", Using<StartingT0WithAComma>},
      {"CalibSettings.missing-setting-leaves-the-variable", Using<MissingSettingIsZero>},
      {"CalibSettings.limits-of-a-good-fit-are-there", Using<NoLimitForA>},
      {"CalibSettings.abundance-band-is-an-interval", Using<BandWithoutMaximum>},
      {"CalibSettings.rf-range-can-be-walked", Using<RangeWithoutStep>},
      {"CalibLogFiles.opens-a-log-file", Using<NoLogFile>},
      {"CalibLogFiles.closing-twice-does-nothing", Using<ClosesOnce>},
      {"CalibLogFiles.joins-six-values", Using<JoinsBySemicolon>},
      {"InstrumentPaths.base-folder-ends-without-a-separator", Using<FolderWithSeparator>},
      {"InstrumentPaths.log-folder-can-be-written", WithoutLogFolder},
      {"FirmwareLibrary.search-stays-within-its-limits", Using<FirmwareBeyondItsLimits>},
      {"FirmwareLibrary.search-ends-in-the-band", Using<FirmwareThatStaysWhereItIs>},
  };
}

}  // namespace tof::conformance
