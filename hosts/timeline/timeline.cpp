#include "hosts/timeline/timeline.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tof::timeline {
namespace {

constexpr std::int32_t kProcess = 1;
constexpr std::int32_t kRoutines = 1;
constexpr std::int32_t kSpectra = 2;
constexpr std::int32_t kSetpoints = 3;

std::int64_t MicrosecondsOf(double seconds) {
  return std::llround(seconds * 1e6);
}

nlohmann::ordered_json NameEvent(const char* what, std::int32_t track, const char* name) {
  return {
      {"name", what}, {"ph", "M"}, {"pid", kProcess}, {"tid", track}, {"args", {{"name", name}}}};
}

nlohmann::ordered_json EventAt(const char* phase, std::int32_t track, std::int64_t at_us) {
  return {{"ph", phase}, {"pid", kProcess}, {"tid", track}, {"ts", at_us}};
}

}  // namespace

Timeline::Timeline(std::shared_ptr<const spectra::InstrumentClock> clock)
    : clock_(std::move(clock)) {
  events_.push_back(NameEvent("process_name", kRoutines, "calibration, on the instrument's time"));
  events_.push_back(NameEvent("thread_name", kRoutines, "routines"));
  events_.push_back(NameEvent("thread_name", kSpectra, "spectra"));
  events_.push_back(NameEvent("thread_name", kSetpoints, "setpoint writes"));
}

void Timeline::Enter(std::string_view routine, std::int32_t level) {
  running_.push_back({{"name", std::string(routine)}, {"args", {{"level", level}}}});
  AddRoutineEvent("B");
}

void Timeline::Leave() {
  if (running_.empty()) return;
  AddRoutineEvent("E");
  running_.pop_back();
}

void Timeline::SpectrumTaken(double began_sec) {
  AddSpan(kSpectra, "spectrum", began_sec, {{"number", ++spectra_}});
}

void Timeline::SetpointWritten(std::int32_t id, double value, double began_sec) {
  AddSpan(kSetpoints, "setpoint " + std::to_string(id), began_sec, {{"id", id}, {"value", value}});
}

std::string Timeline::Document() const {
  Timeline closed = *this;
  while (!closed.running_.empty()) closed.Leave();
  const Json document{{"displayTimeUnit", "ms"}, {"traceEvents", std::move(closed.events_)}};
  return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::int64_t Timeline::NowUs() const {
  return MicrosecondsOf(clock_->Seconds());
}

// Most routines take no time of the instrument, and viewers do not agree on how events of one
// moment nest: each therefore stands a microsecond behind the one before it. An end is found by
// name and arguments in some viewers, by order in others.
void Timeline::AddRoutineEvent(const char* phase) {
  routines_at_us_ = std::max(routines_at_us_ + 1, NowUs());
  Json event = EventAt(phase, kRoutines, routines_at_us_);
  event.update(running_.back());
  events_.push_back(std::move(event));
}

void Timeline::AddSpan(std::int32_t track, const std::string& name, double began_sec,
                       Json details) {
  const std::int64_t began_us = MicrosecondsOf(began_sec);
  Json event = EventAt("X", track, began_us);
  event["dur"] = NowUs() - began_us;
  event["name"] = name;
  event["args"] = std::move(details);
  events_.push_back(std::move(event));
}

}  // namespace tof::timeline
