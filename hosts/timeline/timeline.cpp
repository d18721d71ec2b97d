#include "hosts/timeline/timeline.h"

#include <cmath>

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

}  // namespace

Timeline::Timeline(std::shared_ptr<const spectra::InstrumentClock> clock)
    : clock_(std::move(clock)) {
  events_.push_back(NameEvent("process_name", kRoutines, "calibration, on the instrument's time"));
  events_.push_back(NameEvent("thread_name", kRoutines, "routines"));
  events_.push_back(NameEvent("thread_name", kSpectra, "spectra"));
  events_.push_back(NameEvent("thread_name", kSetpoints, "setpoint writes"));
}

void Timeline::EnterRoutine(const std::string& name, std::int32_t level) {
  ++depth_;
  Json event = Event("B", kRoutines, NowUs());
  event["name"] = name;
  event["args"] = {{"level", level}};
  events_.push_back(std::move(event));
}

void Timeline::LeaveRoutine() {
  if (depth_ == 0) return;
  --depth_;
  events_.push_back(Event("E", kRoutines, NowUs()));
}

void Timeline::SpectrumTaken(double began_sec) {
  AddSpan(kSpectra, "spectrum", began_sec, {{"number", ++spectra_}});
}

void Timeline::SetpointWritten(std::int32_t id, double value, double began_sec) {
  AddSpan(kSetpoints, "setpoint " + std::to_string(id), began_sec, {{"id", id}, {"value", value}});
}

std::string Timeline::Document() const {
  Json events = events_;
  for (std::size_t open = 0; open < depth_; ++open) {
    events.push_back(Event("E", kRoutines, NowUs()));
  }
  const Json document{{"displayTimeUnit", "ms"}, {"traceEvents", std::move(events)}};
  return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::int64_t Timeline::NowUs() const {
  return MicrosecondsOf(clock_->Seconds());
}

Timeline::Json Timeline::Event(const char* phase, std::int32_t track, std::int64_t at_us) const {
  return {{"ph", phase}, {"pid", kProcess}, {"tid", track}, {"ts", at_us}};
}

void Timeline::AddSpan(std::int32_t track, const std::string& name, double began_sec,
                       Json details) {
  const std::int64_t began_us = MicrosecondsOf(began_sec);
  Json event = Event("X", track, began_us);
  event["dur"] = NowUs() - began_us;
  event["name"] = name;
  event["args"] = std::move(details);
  events_.push_back(std::move(event));
}

}  // namespace tof::timeline
