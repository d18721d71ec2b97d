#include "instruments/standin/status_reader.h"

#include "component/automation/error.h"

namespace tof::standin {

Variant StandInStatusReader::Read(const std::string& name, const std::string&, std::int32_t) {
  state_->gate.Enter(Operation::kStatusReaderRead);
  const description::Status& status = state_->description.status;
  if (name == "ACTUAL.NDR[NRDYSTATE]") return status.nrdystate;
  if (name == "REG[ACTUAL].OBJ[1].NDR[RUNSTATE]") return status.runstate;
  throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                        "The instrument has no status value " + name);
}

}  // namespace tof::standin
