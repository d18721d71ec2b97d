#include "hosts/recording/recorder.h"

#include <utility>

#include "component/automation/error.h"

namespace tof::recording {
namespace {

// Set while it lives.
class Mark {
 public:
  explicit Mark(bool& flag) : flag_(flag) { flag = true; }
  ~Mark() { flag_ = false; }
  Mark(const Mark&) = delete;
  Mark& operator=(const Mark&) = delete;

 private:
  bool& flag_;
};

Json LineOf(std::int64_t number, Call call) {
  Json line{{"call", number}};
  if (call.on != ObjectNumber{}) line["on"] = Encoded(call.on);
  line["do"] = std::move(call.operation);
  line["with"] = std::move(call.arguments);
  return line;
}

Json Raised() {
  return {{"raises", Encoded(CurrentError())}};
}

}  // namespace

Json Recorder::Exchange(Call call, const RealCall& real) {
  if (in_call_) return real(calls_);
  const Mark mark(in_call_);
  file_.Begin(LineOf(++calls_, std::move(call)));
  try {
    Json answer = real(calls_);
    file_.End({{"gives", answer}});
    return answer;
  } catch (...) {
    file_.End(Raised());
    throw;
  }
}

Json Recorder::Invoke(const std::string& method, const Json& arguments,
                      const std::function<Json()>& run) {
  file_.Line({{"begin", method}, {"with", arguments}});
  const Json end{{"end", method}};
  try {
    Json answer = run();
    file_.Begin(end);
    file_.End({{"gives", answer}});
    return answer;
  } catch (...) {
    file_.Begin(end);
    file_.End(Raised());
    throw;
  }
}

// Cannot be: what is encoded here is of its type.
AutomationError Recorder::Refused(const MalformedValue& why) {
  return {static_cast<std::int32_t>(RunTimeError::kAutomationError), why.what()};
}

}  // namespace tof::recording
