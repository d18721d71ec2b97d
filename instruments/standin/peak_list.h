#pragma once

#include <cstddef>
#include <vector>

#include "component/automation/error.h"
#include "component/calibrator/mass_time_library.h"

namespace tof::masstime {

class StandInPeakList : public PeakList {
 public:
  void Initialize() override { r_.clear(); }
  std::int32_t Count() override { return static_cast<std::int32_t>(r_.size()); }
  PeakRecord GetRecord(std::int32_t i) override { return r_.at(static_cast<std::size_t>(i)); }
  void Add(const PeakRecord& record) override { r_.push_back(record); }
  void SetRecord(std::int32_t i, const PeakRecord& record) override {
    r_.at(static_cast<std::size_t>(i)) = record;
  }
  void PreparePeakList(std::int32_t, std::int32_t) override {}

 private:
  std::vector<PeakRecord> r_;
};

}  // namespace tof::masstime
