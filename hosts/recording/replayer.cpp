#include "hosts/recording/replayer.h"

#include <utility>

#include "component/automation/error.h"

namespace tof::recording {
namespace {

bool OpensAFile(const std::string& operation) {
  return operation == "FileSystem.OpenForAppending" || operation == "FileSystem.CreateTextFile" ||
         operation == "CalibLogFiles.OpenLogFile";
}

AutomationError Ended() {
  return {static_cast<std::int32_t>(RunTimeError::kAutomationError), "The replay has ended"};
}

std::string TextOrEmpty(const Json& json) {
  return json.is_string() ? json.get<std::string>() : std::string();
}

}  // namespace

Json Replayer::Exchange(Call call, const RealCall&) {
  if (stopped_) Stop();
  const Entry& entry = NextOrStop();
  RequireSameCall(entry, call);
  ++position_;
  last_call_ = entry.number;
  if (!entry.answer) Stop();
  Follow(entry);
  if (entry.answer->raises) throw AutomationError(*entry.answer->raises);
  return entry.answer->gives;
}

Json Replayer::Invoke(const std::string& method, const Json&, const std::function<Json()>& run) {
  if (stopped_) Stop();
  const Entry& begin = NextOrStop();
  if (begin.kind != EntryKind::kBegin || begin.name != method) {
    Differ(begin, "call of " + method + " from outside", "");
  }
  ++position_;
  Answer answer;
  try {
    answer.gives = run();
  } catch (...) {
    if (stopped_) throw;
    answer.raises = CurrentError();
  }
  if (stopped_) Stop();
  RequireSameEnd(method, answer);
  ++position_;
  if (answer.raises) throw AutomationError(*answer.raises);
  return answer.gives;
}

AutomationError Replayer::Refused(const MalformedValue& why) {
  const std::size_t line = recording_.entries[position_ - 1].line;
  refused_ = spectra::InputError({recording_.source, line, 1}, "an answer of another type",
                                 "what the operation gives: " + std::string(why.what()));
  stopped_ = true;
  return Ended();
}

const Entry* Replayer::NextBegin() const {
  if (stopped_ || position_ == recording_.entries.size()) return nullptr;
  const Entry& entry = recording_.entries[position_];
  if (entry.kind == EntryKind::kBegin) return &entry;
  throw spectra::InputError({recording_.source, entry.line, 1}, DescriptionOfEntry(entry),
                            "a call of the calibrator from outside");
}

void Replayer::Stop() {
  stopped_ = true;
  throw Ended();
}

void Replayer::Differ(const Entry& entry, const std::string& came, const std::string& first_part) {
  Difference difference;
  difference.line = entry.line;
  difference.call = entry.kind == EntryKind::kCall ? entry.number : last_call_;
  if (!routines_.empty()) difference.routine = routines_.back();
  difference.expected = DescriptionOfEntry(entry);
  difference.came = came;
  difference.first_part = first_part;
  difference_ = std::move(difference);
  Stop();
}

const Entry& Replayer::NextOrStop() {
  if (position_ == recording_.entries.size()) Stop();
  return recording_.entries[position_];
}

void Replayer::RequireSameCall(const Entry& entry, const Call& call) {
  const std::string came = DescriptionOf(call.operation, call.on, call.arguments, files_);
  if (entry.kind != EntryKind::kCall || entry.name != call.operation) Differ(entry, came, "");
  if (entry.on != call.on) {
    Differ(entry, came,
           "object: that of call " + std::to_string(entry.on.value) + " against that of call " +
               std::to_string(call.on.value));
  }
  if (!AreTheSame(entry.arguments, call.arguments)) {
    Differ(entry, came, "arguments" + FirstDifferingPart(entry.arguments, call.arguments));
  }
}

void Replayer::RequireSameEnd(const std::string& method, const Answer& came) {
  const Entry& entry = NextOrStop();
  const std::string description = DescriptionOfEnd(method, came);
  if (entry.kind != EntryKind::kEnd || entry.name != method) Differ(entry, description, "");
  const Answer& expected = *entry.answer;
  const auto of = [](const Answer& answer) {
    return answer.raises ? Json{{"raises", Encoded(*answer.raises)}} : answer.gives;
  };
  if (AreTheSame(of(expected), of(came))) return;
  Differ(entry, description, "result" + FirstDifferingPart(of(expected), of(came)));
}

std::string Replayer::DescriptionOfEntry(const Entry& entry) const {
  switch (entry.kind) {
    case EntryKind::kBegin:
      return "call of " + entry.name + " from outside";
    case EntryKind::kCall:
      return DescriptionOf(entry.name, entry.on, entry.arguments, files_);
    case EntryKind::kEnd:
      return DescriptionOfEnd(entry.name, *entry.answer);
  }
  return {};
}

// Keeps count, the routines that run and the names of files.
void Replayer::Follow(const Entry& entry) {
  ++counts_.calls;
  if (entry.name == "TextStream.WriteLine") ++counts_.log_lines;
  if (OpensAFile(entry.name)) files_[entry.number] = TextOrEmpty(entry.arguments.at(0));
  if (entry.name != "LateBoundObject.Call") return;
  ++counts_.trace_lines;
  const std::string method = TextOrEmpty(entry.arguments.at(0));
  if (method == "Entry") routines_.push_back(TextOrEmpty(entry.arguments.at(1).at(0)));
  if (method == "Exit" && !routines_.empty()) routines_.pop_back();
}

}  // namespace tof::recording
