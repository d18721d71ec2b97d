#include "hosts/recording/taped_mass_time.h"

namespace tof::recording {

double TapedMassCalCoefficients::GetBinWidth() {
  return object_.Ask("MassCalCoefficients.GetBinWidth", Arguments(),
                     [&] { return inner_->GetBinWidth(); });
}

CoefficientRecord TapedMassCalCoefficients::GetCoefficientRecord() {
  return object_.Ask("MassCalCoefficients.GetCoefficientRecord", Arguments(),
                     [&] { return inner_->GetCoefficientRecord(); });
}

double TapedMassCalCoefficients::TimeToMass(double time_ns) {
  return object_.Ask("MassCalCoefficients.TimeToMass", Arguments(time_ns),
                     [&] { return inner_->TimeToMass(time_ns); });
}

double TapedMassCalCoefficients::MassToTime(double mass) {
  return object_.Ask("MassCalCoefficients.MassToTime", Arguments(mass),
                     [&] { return inner_->MassToTime(mass); });
}

void TapedMassCalCoefficients::Calibrate(const BoundedArray<double>& masses,
                                         const BoundedArray<double>& times_ns) {
  object_.Ask("MassCalCoefficients.Calibrate", Arguments(masses, times_ns),
              [&] { inner_->Calibrate(masses, times_ns); });
}

CalInfo TapedMassCalCoefficients::GetCalInfo() {
  return object_.Ask("MassCalCoefficients.GetCalInfo", Arguments(),
                     [&] { return inner_->GetCalInfo(); });
}

void TapedMassCalCoefficients::SetCalInfo(const CalInfo& info) {
  object_.Ask("MassCalCoefficients.SetCalInfo", Arguments(info), [&] { inner_->SetCalInfo(info); });
}

void TapedPeakList::Initialize() {
  object_.Ask("PeakList.Initialize", Arguments(), [&] { inner_->Initialize(); });
}

std::int32_t TapedPeakList::Count() {
  return object_.Ask("PeakList.Count", Arguments(), [&] { return inner_->Count(); });
}

PeakRecord TapedPeakList::GetRecord(std::int32_t index) {
  return object_.Ask("PeakList.GetRecord", Arguments(index),
                     [&] { return inner_->GetRecord(index); });
}

void TapedPeakList::Add(const PeakRecord& record) {
  object_.Ask("PeakList.Add", Arguments(record), [&] { inner_->Add(record); });
}

void TapedPeakList::SetRecord(std::int32_t index, const PeakRecord& record) {
  object_.Ask("PeakList.SetRecord", Arguments(index, record),
              [&] { inner_->SetRecord(index, record); });
}

void TapedPeakList::PreparePeakList(std::int32_t first, std::int32_t second) {
  object_.Ask("PeakList.PreparePeakList", Arguments(first, second),
              [&] { inner_->PreparePeakList(first, second); });
}

}  // namespace tof::recording
