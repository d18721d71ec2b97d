#include "instruments/masstime/stored_peak_list.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>

#include "component/automation/error.h"

namespace tof::masstime {
namespace {

using Fields = std::array<double, sizeof(PeakRecord) / sizeof(double)>;

std::size_t FieldIndex(std::int32_t field) {
  if (field < 0 || static_cast<std::size_t>(field) >= Fields{}.size()) {
    Raise(RunTimeError::kInvalidCall);
  }
  return static_cast<std::size_t>(field);
}

double FieldOf(const PeakRecord& record, std::size_t field) {
  return std::bit_cast<Fields>(record)[field];
}

}  // namespace

void StoredPeakList::PreparePeakList(std::int32_t signal_field, std::int32_t position_field) {
  const std::size_t signal = FieldIndex(signal_field);
  const std::size_t position = FieldIndex(position_field);
  std::erase_if(records_, [=](const PeakRecord& record) {
    return !(FieldOf(record, signal) > 0.0) || std::isnan(FieldOf(record, position));
  });
  std::stable_sort(records_.begin(), records_.end(), [=](const PeakRecord& a, const PeakRecord& b) {
    return FieldOf(a, position) < FieldOf(b, position);
  });
}

std::size_t StoredPeakList::OffsetOf(std::int32_t index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= records_.size()) {
    Raise(RunTimeError::kSubscriptOutOfRange);
  }
  return static_cast<std::size_t>(index);
}

}  // namespace tof::masstime
