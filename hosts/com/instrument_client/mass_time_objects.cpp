#include "hosts/com/instrument_client/mass_time_objects.h"

#include "hosts/com/automation/safe_array.h"
#include "hosts/com/instrument_client/answers.h"

namespace tof::com {
namespace {

// Every object that the component hands back came from an instrument.
template <class Automation, class Interface>
IDispatch* InstrumentsOwn(const std::shared_ptr<Interface>& object) {
  if (object == nullptr) return nullptr;
  const auto* automation = dynamic_cast<const Automation*>(object.get());
  if (automation == nullptr) Raise(RunTimeError::kTypeMismatch);
  return automation->get();
}

}  // namespace

double AutomationCoefficients::GetBinWidth() {
  return DoubleIn(object_.Call("GetBinWidth"));
}
CoefficientRecord AutomationCoefficients::GetCoefficientRecord() {
  return CoefficientRecordIn(object_.Call("GetCoefficientRecord").get());
}
double AutomationCoefficients::TimeToMass(double time_ns) {
  return DoubleIn(object_.Call("TimeToMass", time_ns));
}
double AutomationCoefficients::MassToTime(double mass) {
  return DoubleIn(object_.Call("MassToTime", mass));
}
void AutomationCoefficients::Calibrate(const BoundedArray<double>& masses,
                                       const BoundedArray<double>& times_ns) {
  object_.Call("Calibrate", ToVariant(masses), ToVariant(times_ns));
}
CalInfo AutomationCoefficients::GetCalInfo() {
  return CalInfoIn(object_.Call("GetCalInfo").get());
}
void AutomationCoefficients::SetCalInfo(const CalInfo& info) {
  object_.Call("SetCalInfo", ToVariant(info));
}

void AutomationPeakList::Initialize() {
  object_.Call("Initialize");
}
std::int32_t AutomationPeakList::Count() {
  return Int32In(object_.Call("Count"));
}
PeakRecord AutomationPeakList::GetRecord(std::int32_t index) {
  return PeakRecordIn(object_.Call("GetRecord", index).get());
}
void AutomationPeakList::Add(const PeakRecord& record) {
  object_.Call("Add", ToVariant(record));
}
void AutomationPeakList::SetRecord(std::int32_t index, const PeakRecord& record) {
  object_.Call("SetRecord", index, ToVariant(record));
}
void AutomationPeakList::PreparePeakList(std::int32_t first, std::int32_t second) {
  object_.Call("PreparePeakList", first, second);
}

std::shared_ptr<MassCalCoefficients> CoefficientsOf(ComPtr<IDispatch> object) {
  if (!object) return nullptr;
  return std::make_shared<AutomationCoefficients>(
      DispatchObject(std::move(object), "the coefficients object"));
}

std::shared_ptr<PeakList> PeakListOf(ComPtr<IDispatch> object) {
  if (!object) return nullptr;
  return std::make_shared<AutomationPeakList>(DispatchObject(std::move(object), "the peak list"));
}

IDispatch* ObjectOf(const std::shared_ptr<MassCalCoefficients>& coefficients) {
  return InstrumentsOwn<AutomationCoefficients>(coefficients);
}
IDispatch* ObjectOf(const std::shared_ptr<PeakList>& list) {
  return InstrumentsOwn<AutomationPeakList>(list);
}

}  // namespace tof::com
