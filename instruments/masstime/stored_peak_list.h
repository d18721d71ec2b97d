// The peak list that the spectrum parser fills.
#pragma once

#include <cstdint>
#include <vector>

#include "component/calibrator/mass_time_library.h"

namespace tof::masstime {

class StoredPeakList final : public PeakList {
 public:
  void Initialize() override { records_.clear(); }
  std::int32_t Count() override { return static_cast<std::int32_t>(records_.size()); }
  PeakRecord GetRecord(std::int32_t index) override { return records_[OffsetOf(index)]; }
  void Add(const PeakRecord& record) override { records_.push_back(record); }
  void SetRecord(std::int32_t index, const PeakRecord& record) override {
    records_[OffsetOf(index)] = record;
  }

  // Makes a list usable for pairing: records whose field `signal_field` is not above 0 (entries
  // that no peak was found for, NaN) are dropped, the others put in ascending order of
  // `position_field`. Fields are the record's doubles, counted from 0: (5, 0) is by height and
  // position. Error 5 for a field that a record does not have.
  void PreparePeakList(std::int32_t signal_field, std::int32_t position_field) override;

 private:
  std::size_t OffsetOf(std::int32_t index) const;

  std::vector<PeakRecord> records_;
};

}  // namespace tof::masstime
