// Every call of a collaborator passes here: it is counted, and fails when a fault was planned for
// it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "instruments/standin/operation.h"

namespace tof::standin {

// A failure to be met on purpose.
struct Fault {
  Operation operation{};
  std::int64_t call = 1;            // the n-th call of the operation, from 1
  bool and_all_later_ones = false;  // else that call only
};

class OperationGate {
 public:
  explicit OperationGate(std::vector<Fault> faults = {}) : faults_(std::move(faults)) {}

  // The first thing an operation does. Raises error 440, naming the operation, when a fault was
  // planned for this call; the operation has then done nothing.
  void Enter(Operation operation);

  // One more failure, of a call that is still to come.
  void Plan(const Fault& fault) { faults_.push_back(fault); }
  void WithdrawPlans() { faults_.clear(); }

  // How often an operation was called, with the calls that failed.
  std::int64_t Calls(Operation operation) const {
    return calls_[static_cast<std::size_t>(operation)];
  }

 private:
  std::vector<Fault> faults_;
  std::array<std::int64_t, kOperationCount> calls_{};
};

}  // namespace tof::standin
