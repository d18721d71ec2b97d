#include "instruments/standin/status_reader.h"

#include <algorithm>

#include "component/automation/error.h"

namespace tof::standin {
namespace {

constexpr std::int32_t kNotReady = -1;

std::int32_t ReadyState(const description::Status& status, double now_sec) {
  const bool not_ready = std::any_of(
      status.not_ready.begin(), status.not_ready.end(),
      [now_sec](const auto& time) { return now_sec >= time.from_sec && now_sec < time.to_sec; });
  return not_ready ? kNotReady : status.nrdystate;
}

}  // namespace

Variant StandInStatusReader::Read(const std::string& name, const std::string&, std::int32_t) {
  state_->gate.Enter(Operation::kStatusReaderRead);
  const description::Status& status = state_->description.status;
  if (name == "ACTUAL.NDR[NRDYSTATE]") return ReadyState(status, state_->clock->Seconds());
  if (name == "REG[ACTUAL].OBJ[1].NDR[RUNSTATE]") return status.runstate;
  throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall),
                        "The instrument has no status value " + name);
}

}  // namespace tof::standin
