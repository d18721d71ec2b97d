#include "hosts/com/instrument_client/collaborators.h"

#include <vector>

#include "hosts/com/automation/safe_array.h"
#include "hosts/com/automation/text_stream.h"
#include "hosts/com/instrument_client/answers.h"
#include "hosts/com/instrument_client/mass_time_objects.h"

namespace tof::com {
namespace {

// The object of an answer as an adapter of its own; none for none.
template <class Adapter>
std::shared_ptr<Adapter> AdapterOf(const OwnedVariant& answer, const char* what) {
  ComPtr<IDispatch> object = ObjectIn(answer.get());
  if (!object) return nullptr;
  return std::make_shared<Adapter>(DispatchObject(std::move(object), what));
}

// Receives a variant by reference.
class VariantOut {
 public:
  OwnedVariant AsArgument() { return OwnedVariant::ByRef(value_); }
  const VARIANT& get() const { return value_; }
  VariantOut() { VariantInit(&value_); }
  ~VariantOut() { VariantClear(&value_); }
  VariantOut(const VariantOut&) = delete;
  VariantOut& operator=(const VariantOut&) = delete;

 private:
  VARIANT value_;
};

}  // namespace

Variant AutomationSetpointTable::GetSetpoint(std::int32_t id) {
  return FromVariant(object_.Call("GetSetpoint", id).get());
}
void AutomationSetpointTable::SetSetpoint(std::int32_t id, ValueType type, const Variant& value) {
  object_.Call("SetSetpoint", id, static_cast<std::int32_t>(type), ToVariant(value));
}
Variant AutomationSetpointTable::GetCurrentValue(std::int32_t id) {
  return FromVariant(object_.Call("GetCurrentValue", id).get());
}

void AutomationSpectrumDisplay::SetDisplayUpdate(bool live) {
  object_.Call("SetDisplayUpdate", live);
}

Variant AutomationStatusReader::Read(const std::string& name, const std::string& type,
                                     std::int32_t zero) {
  return FromVariant(object_.Call("Read", name, type, zero).get());
}

void AutomationDataDictionary::Initialize() {
  object_.Call("Initialize");
}
std::shared_ptr<SetpointTable> AutomationDataDictionary::GetSetpointTable() {
  return AdapterOf<AutomationSetpointTable>(object_.Call("GetSetpointTable"), "the setpoint table");
}
std::shared_ptr<SpectrumDisplay> AutomationDataDictionary::GetConfigObject() {
  return AdapterOf<AutomationSpectrumDisplay>(object_.Call("GetConfigObject"),
                                              "the spectrum display");
}
std::string AutomationDataDictionary::GetFlagKey() {
  return TextIn(object_.Call("GetFlagKey"));
}
double AutomationDataDictionary::GetTimeValue() {
  return DoubleIn(object_.Call("GetTimeValue"));
}
std::int32_t AutomationDataDictionary::GetAcqStartTime() {
  return Int32In(object_.Call("GetAcqStartTime"));
}
std::int32_t AutomationDataDictionary::GetAcqEndTime() {
  return Int32In(object_.Call("GetAcqEndTime"));
}
std::shared_ptr<StatusReader> AutomationDataDictionary::GetStatusReader() {
  return AdapterOf<AutomationStatusReader>(object_.Call("GetStatusReader"), "the status reader");
}
std::string AutomationDataDictionary::GetModeName() {
  return TextIn(object_.Call("GetModeName"));
}
bool AutomationDataDictionary::ModeUsesRfSetpoints(const std::string& mode_name) {
  return BoolIn(object_.Call("ModeUsesRfSetpoints", mode_name));
}

void AutomationAcqController::InitializeController(std::int32_t zero) {
  object_.Call("InitializeController", zero);
}
void AutomationAcqController::InitializeAcquisition(std::int32_t zero) {
  object_.Call("InitializeAcquisition", zero);
}
Variant AutomationAcqController::PrepareSetpointAccess() {
  return FromVariant(object_.Call("PrepareSetpointAccess").get());
}
Variant AutomationAcqController::PrepareSetpointTable() {
  return FromVariant(object_.Call("PrepareSetpointTable").get());
}
std::int16_t AutomationAcqController::IsAbortRequested() {
  const OwnedVariant answer = object_.Call("IsAbortRequested");
  // As it is: an answer other than True and False still counts as yes.
  if (V_VT(&answer.get()) == VT_BOOL) return V_BOOL(&answer.get());
  return ToInt16(FromVariant(answer.get()));
}
double AutomationAcqController::GetScaleFactor() {
  return DoubleIn(object_.Call("GetScaleFactor"));
}
std::shared_ptr<MassCalCoefficients> AutomationAcqController::GetCurrentMassCalObject() {
  return CoefficientsOf(ObjectIn(object_.Call("GetCurrentMassCalObject").get()));
}
double AutomationAcqController::GetCurrentA() {
  return DoubleIn(object_.Call("GetCurrentA"));
}
std::shared_ptr<MassCalCoefficients> AutomationAcqController::GetDefaultCalibCoefficients() {
  return CoefficientsOf(ObjectIn(object_.Call("GetDefaultCalibCoefficients").get()));
}
void AutomationAcqController::SetCalibCoefficients(
    const std::shared_ptr<MassCalCoefficients>& coefficients) {
  object_.Call("SetCalibCoefficients", ObjectOf(coefficients));
}
void AutomationAcqController::SetLikelyAAndT0(double a_per_us, double t0_us) {
  object_.Call("SetLikelyAAndT0", a_per_us, t0_us);
}
ColumnStatistics AutomationAcqController::GetColumnStatistics(
    const BoundedArray2D<double>& values) {
  VariantOut averages;
  VariantOut deviations;
  object_.Call("GetColumnStatistics", ToVariant(values), averages.AsArgument(),
               deviations.AsArgument());
  return {DoublesIn(averages.get()), DoublesIn(deviations.get())};
}
void AutomationAcqController::EndAIC() {
  object_.Call("EndAIC");
}
Variant AutomationAcqController::ReadSetpoint(std::int32_t id) {
  return FromVariant(object_.Call("ReadSetpoint", id).get());
}
std::string AutomationAcqController::GetConfigurationName() {
  return TextIn(object_.Call("GetConfigurationName"));
}
BoundedArray<double> AutomationAcqController::GetCalibrantMasses(
    std::int32_t setpoint117, const std::string& mode_name, const std::string& configuration_name) {
  const OwnedVariant masses =
      object_.Call("GetCalibrantMasses", setpoint117, mode_name, configuration_name);
  return MassesFromCaller(FromVariant(masses.get()));
}

PeakAttribsTable AutomationSpecParser::GetCalibrantPeakAttributes(const Variant& masses,
                                                                  double peak_find_window) {
  const OwnedVariant table =
      object_.Call("GetCalibrantPeakAttributes", ToVariant(masses), peak_find_window);
  return PeakAttribsIn(table.get());
}
double AutomationSpecParser::GetPeakAttribute(PeakCalculationtype kind, double mass,
                                              double tolerance) {
  return DoubleIn(
      object_.Call("GetPeakAttribute", static_cast<std::int32_t>(kind), mass, tolerance));
}
void AutomationSpecParser::FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought,
                                     std::int32_t& count, std::shared_ptr<PeakList>& list) {
  LONG found = count;
  IDispatch* object = ObjectOf(list);
  if (object != nullptr) object->AddRef();
  const auto release = [&] { return ComPtr<IDispatch>::Adopt(std::exchange(object, nullptr)); };
  try {
    object_.Call("FindPeaks", start_ns, end_ns, peaks_sought, OwnedVariant::ByRef(found),
                 OwnedVariant::ByRef(object));
  } catch (...) {
    release();
    throw;
  }
  count = found;
  list = PeakListOf(release());
}
bool AutomationSpecParser::ShouldAvoidAIC(const Variant& masses, double& peak_find_width) {
  return BoolIn(
      object_.Call("ShouldAvoidAIC", ToVariant(masses), OwnedVariant::ByRef(peak_find_width)));
}
void AutomationSpecParser::SearchTargetAbundance(double mass, double tolerance) {
  object_.Call("SearchTargetAbundance", mass, tolerance);
}

std::string AutomationTuneFlags::GetFlag(const std::string& key, std::int32_t minus_one) {
  return TextIn(object_.Call("GetFlag", key, minus_one));
}

void AutomationCalibSettings::GetValue(const std::string& section, const std::string& key,
                                       std::int32_t zero, double& value) {
  object_.Call("GetValue", section, key, zero, OwnedVariant::ByRef(value));
}

std::shared_ptr<TextStream> AutomationCalibLogFiles::OpenLogFile(const std::string& prefix,
                                                                 const std::string& header,
                                                                 const std::string& extension) {
  return AdapterOf<AutomationTextStream>(object_.Call("OpenLogFile", prefix, header, extension),
                                         "the log file");
}
std::string AutomationCalibLogFiles::JoinAsCsvLine(const std::array<Variant, 6>& values) {
  const Variant array = Variant::Array(std::vector<Variant>(values.begin(), values.end()));
  return TextIn(object_.Call("JoinAsCsvLine", ToVariant(array)));
}

std::string AutomationInstrumentPaths::GetBaseFolder() {
  return TextIn(object_.Call("GetBaseFolder"));
}

}  // namespace tof::com
