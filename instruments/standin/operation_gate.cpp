#include "instruments/standin/operation_gate.h"

#include <string>

#include "component/automation/error.h"

namespace tof::standin {

void OperationGate::Enter(Operation operation) {
  const std::int64_t call = ++calls_[static_cast<std::size_t>(operation)];
  for (const Fault& fault : faults_) {
    if (fault.operation != operation) continue;
    if (call == fault.call || (call > fault.call && fault.and_all_later_ones)) {
      throw AutomationError(static_cast<std::int32_t>(RunTimeError::kAutomationError),
                            "Planned failure of " + std::string(NameOf(operation)) + ", call " +
                                std::to_string(call));
    }
  }
}

}  // namespace tof::standin
