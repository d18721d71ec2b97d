#include "tests/support/fake_mass_time.h"

#include <cmath>

namespace tof::fakes {

double FakeCoefficients::GetBinWidth() {
  journal_->Enter("MassCalCoefficients.GetBinWidth");
  return bin_width_ns;
}

CoefficientRecord FakeCoefficients::GetCoefficientRecord() {
  journal_->Enter("MassCalCoefficients.GetCoefficientRecord");
  return record;
}

double FakeCoefficients::TimeToMass(double time_ns) {
  journal_->Enter("MassCalCoefficients.TimeToMass");
  const double root = record[0] * (time_ns - record[1]);
  return root * root;
}

double FakeCoefficients::MassToTime(double mass) {
  journal_->Enter("MassCalCoefficients.MassToTime");
  return record[1] + std::sqrt(mass) / record[0];
}

void FakeCoefficients::Calibrate(const BoundedArray<double>& masses,
                                 const BoundedArray<double>& times_ns) {
  journal_->Enter("MassCalCoefficients.Calibrate");
  double n = 0.0;
  double sum_t = 0.0;
  double sum_y = 0.0;
  for (std::int32_t i = masses.LBound(); i <= masses.UBound(); ++i) {
    n += 1.0;
    sum_t += times_ns(i);
    sum_y += std::sqrt(masses(i));
  }
  double spread = 0.0;
  double product = 0.0;
  for (std::int32_t i = masses.LBound(); i <= masses.UBound(); ++i) {
    const double dt = times_ns(i) - sum_t / n;
    spread += dt * dt;
    product += dt * (std::sqrt(masses(i)) - sum_y / n);
  }
  if (!(spread > 0.0)) Raise(RunTimeError::kInvalidCall);
  record[0] = product / spread;
  record[1] = sum_t / n - sum_y / n / record[0];
  if (bad_fits != nullptr && !bad_fits->empty()) {
    record[0] *= 1.0 + bad_fits->front();
    bad_fits->erase(bad_fits->begin());
  }
}

CalInfo FakeCoefficients::GetCalInfo() {
  journal_->Enter("MassCalCoefficients.GetCalInfo");
  return info;
}

void FakeCoefficients::SetCalInfo(const CalInfo& new_info) {
  journal_->Enter("MassCalCoefficients.SetCalInfo");
  info = new_info;
}

void FakePeakList::Initialize() {
  journal_.Enter("PeakList.Initialize");
  records.clear();
}

std::int32_t FakePeakList::Count() {
  journal_.Enter("PeakList.Count");
  return static_cast<std::int32_t>(records.size());
}

PeakRecord FakePeakList::GetRecord(std::int32_t index) {
  journal_.Enter("PeakList.GetRecord");
  return At(index);
}

void FakePeakList::Add(const PeakRecord& record) {
  journal_.Enter("PeakList.Add");
  records.push_back(record);
}

void FakePeakList::SetRecord(std::int32_t index, const PeakRecord& record) {
  journal_.Enter("PeakList.SetRecord");
  At(index) = record;
}

void FakePeakList::PreparePeakList(std::int32_t first, std::int32_t second) {
  journal_.Enter("PeakList.PreparePeakList(" + std::to_string(first) + "," +
                 std::to_string(second) + ")");
}

PeakRecord& FakePeakList::At(std::int32_t index) {
  if (index < 0 || static_cast<std::size_t>(index) >= records.size()) {
    Raise(RunTimeError::kSubscriptOutOfRange);
  }
  return records[static_cast<std::size_t>(index)];
}

}  // namespace tof::fakes
