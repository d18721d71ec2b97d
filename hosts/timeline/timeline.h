// What happened when, on the instrument's time, as a file that trace viewers show.
#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/native/followed_trace.h"
#include "instruments/spectra/instrument_clock.h"
#include "instruments/standin/instrument_observer.h"

namespace tof::timeline {

// Three tracks: the calibrator's routines as nested spans, the spectra, the setpoint writes.
class Timeline : public standin::InstrumentObserver, public native::RoutineFollower {
 public:
  // The clock is that of the instrument that is observed.
  explicit Timeline(std::shared_ptr<const spectra::InstrumentClock> clock);

  // Begins now, inside the routines that run.
  void Enter(std::string_view routine, std::int32_t level) override;
  // Ends the innermost one; nothing when none runs.
  void Leave() override;

  void SpectrumTaken(double began_sec) override;
  void SetpointWritten(std::int32_t id, double value, double began_sec) override;

  // The trace-event format: a JSON object whose "traceEvents" are metadata (names of the tracks),
  // a "B" and an "E" for each routine and an "X" for each spectrum and setpoint write, with "ts"
  // and "dur" in whole microseconds since the instrument was switched on. On each track the times
  // do not go back; routine events of one moment stand a microsecond apart, in their order.
  // Routines that still run end now.
  std::string Document() const;

 private:
  using Json = nlohmann::ordered_json;

  std::int64_t NowUs() const;
  void AddRoutineEvent(const char* phase);  // of the innermost routine
  // Ends now.
  void AddSpan(std::int32_t track, const std::string& name, double began_sec, Json details);

  std::shared_ptr<const spectra::InstrumentClock> clock_;
  Json events_ = Json::array();
  std::vector<Json> running_;         // routines, innermost last: "name" and "args"
  std::int64_t routines_at_us_ = -1;  // their last event
  std::int64_t spectra_ = 0;
};

}  // namespace tof::timeline
