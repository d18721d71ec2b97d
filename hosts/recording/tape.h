// What passes between the calibrator and the outside, as it is kept.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "hosts/recording/encoding.h"

namespace tof::recording {

// A call of the calibrator to the outside.
struct Call {
  ObjectNumber on;        // none: the instrument factory, the host or the event sink
  std::string operation;  // "Collaborator.Operation"
  Json arguments;         // an array
  friend bool operator==(const Call&, const Call&) = default;
};

// A recorder lets the outside answer and keeps what it said. A replayer answers in its place. For
// the calibrator the two are one, as it is answered by what stands in the recording either way.
class Tape {
 public:
  virtual ~Tape() = default;

  // The encoded answer of a call, or the AutomationError that it raised. `real` makes the call; its
  // argument is the number of the call, by which an object that it gives is known from then on.
  using RealCall = std::function<Json(std::int64_t number)>;
  virtual Json Exchange(Call call, const RealCall& real) = 0;

  // A call of the calibrator's own `method` from outside, with all exchanges it leads to. Raises
  // what `run` raises.
  virtual Json Invoke(const std::string& method, const Json& arguments,
                      const std::function<Json()>& run) = 0;

  // What is to be raised for an answer of another type than the operation's.
  virtual AutomationError Refused(const MalformedValue& why) = 0;
};

}  // namespace tof::recording
