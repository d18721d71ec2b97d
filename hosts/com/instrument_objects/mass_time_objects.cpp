#include "hosts/com/instrument_objects/mass_time_objects.h"

#include "hosts/com/automation/safe_array.h"
#include "hosts/com/instrument_client/mass_time_objects.h"

namespace tof::com {
namespace {

constexpr const char* kCoefficients = "vornmasstime.MassCalCoefficients";
constexpr const char* kPeakList = "vornmasstime.PeakList";

// Asked of an object, this answers whether it is one of this module's, as no other knows it.
constexpr GUID kCoefficientsOfThisModule = {
    0xe7f381b2, 0x681d, 0x45ae, {0x91, 0xa8, 0x14, 0x78, 0xf0, 0x50, 0x6a, 0x05}};

}  // namespace

HRESULT CoefficientsObject::QueryInterface(REFIID iid, void** object) {
  if (iid != kCoefficientsOfThisModule) return DualObject::QueryInterface(iid, object);
  *object = this;
  AddRef();
  return S_OK;
}

HRESULT CoefficientsObject::GetBinWidth(double* width_ns) {
  return Answer(kCoefficients, [&] { *width_ns = coefficients_->GetBinWidth(); });
}
HRESULT CoefficientsObject::GetCoefficientRecord(VARIANT* record) {
  return Answer(kCoefficients,
                [&] { *record = ToVariant(coefficients_->GetCoefficientRecord()).Detach(); });
}
HRESULT CoefficientsObject::TimeToMass(double time_ns, double* mass) {
  return Answer(kCoefficients, [&] { *mass = coefficients_->TimeToMass(time_ns); });
}
HRESULT CoefficientsObject::MassToTime(double mass, double* time_ns) {
  return Answer(kCoefficients, [&] { *time_ns = coefficients_->MassToTime(mass); });
}
HRESULT CoefficientsObject::Calibrate(VARIANT masses, VARIANT times_ns) {
  return Answer(kCoefficients,
                [&] { coefficients_->Calibrate(DoublesIn(masses), DoublesIn(times_ns)); });
}
HRESULT CoefficientsObject::GetCalInfo(VARIANT* info) {
  return Answer(kCoefficients, [&] { *info = ToVariant(coefficients_->GetCalInfo()).Detach(); });
}
HRESULT CoefficientsObject::SetCalInfo(VARIANT info) {
  return Answer(kCoefficients, [&] { coefficients_->SetCalInfo(CalInfoIn(info)); });
}

HRESULT PeakListObject::Initialize() {
  return Answer(kPeakList, [&] { list_->Initialize(); });
}
HRESULT PeakListObject::Count(LONG* count) {
  return Answer(kPeakList, [&] { *count = list_->Count(); });
}
HRESULT PeakListObject::GetRecord(LONG index, VARIANT* record) {
  return Answer(kPeakList, [&] { *record = ToVariant(list_->GetRecord(index)).Detach(); });
}
HRESULT PeakListObject::Add(VARIANT record) {
  return Answer(kPeakList, [&] { list_->Add(PeakRecordIn(record)); });
}
HRESULT PeakListObject::SetRecord(LONG index, VARIANT record) {
  return Answer(kPeakList, [&] { list_->SetRecord(index, PeakRecordIn(record)); });
}
HRESULT PeakListObject::PreparePeakList(LONG first, LONG second) {
  return Answer(kPeakList, [&] { list_->PreparePeakList(first, second); });
}

IMassCalCoefficients* NewCoefficientsObject(std::shared_ptr<MassCalCoefficients> coefficients) {
  if (coefficients == nullptr) return nullptr;
  return NewObject<CoefficientsObject>(std::move(coefficients)).Detach();
}
IPeakList* NewPeakListObject(std::shared_ptr<PeakList> list) {
  if (list == nullptr) return nullptr;
  return NewObject<PeakListObject>(std::move(list)).Detach();
}

std::shared_ptr<MassCalCoefficients> CoefficientsBehind(IMassCalCoefficients* object) {
  if (object == nullptr) return nullptr;
  void* own = nullptr;
  if (FAILED(object->QueryInterface(kCoefficientsOfThisModule, &own))) {
    return CoefficientsOf(ComPtr<IDispatch>(object));
  }
  return ComPtr<CoefficientsObject>::Adopt(static_cast<CoefficientsObject*>(own))->Inner();
}

}  // namespace tof::com
