#include "hosts/recording/difference.h"

namespace tof::recording {
namespace {

std::string TextOf(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string ListOf(const Json& arguments) {
  std::string text;
  for (const Json& argument : arguments) {
    if (!text.empty()) text += ", ";
    text += TextOf(argument);
  }
  return text;
}

// Of "LateBoundObject.Call": its method, then the arguments of that.
std::string TraceCall(const Json& arguments) {
  const bool known = arguments.size() == 2 && arguments[1].is_array() && arguments[1].size() >= 2;
  if (!known) return {};
  const Json& passed = arguments[1];
  if (arguments[0] == "TracePrint") {
    return "trace line " + TextOf(passed[0]) + " of " + TextOf(passed[1]);
  }
  if (arguments[0] == "Entry" || arguments[0] == "Exit") {
    return "trace " + arguments[0].get<std::string>() + " of " + TextOf(passed[0]) + ", level " +
           TextOf(passed[1]);
  }
  return {};
}

}  // namespace

std::string DescriptionOf(const std::string& operation, ObjectNumber on, const Json& arguments,
                          const FileNames& files) {
  if (operation == "LateBoundObject.Call") {
    std::string trace = TraceCall(arguments);
    if (!trace.empty()) return trace;
  }
  if (operation == "TextStream.WriteLine") {
    const auto file = files.find(on.value);
    return "line " + ListOf(arguments) + " of " +
           (file == files.end() ? "a file that was not opened" : file->second);
  }
  return operation + "(" + ListOf(arguments) + ")";
}

std::string DescriptionOfEnd(const std::string& method, const Answer& answer) {
  const std::string end = "end of " + method + ", which ";
  return answer.raises ? end + "raises " + TextOf(Encoded(*answer.raises))
                       : end + "gives " + TextOf(answer.gives);
}

std::string FirstDifferingPart(const Json& expected, const Json& came) {
  if (expected.is_array() && came.is_array() && expected.size() == came.size()) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
      if (AreTheSame(expected[i], came[i])) continue;
      return "[" + std::to_string(i) + "]" + FirstDifferingPart(expected[i], came[i]);
    }
  }
  if (expected.is_object() && came.is_object()) {
    for (const auto& [key, value] : expected.items()) {
      if (!came.contains(key) || AreTheSame(value, came[key])) continue;
      return "." + key + FirstDifferingPart(value, came[key]);
    }
  }
  return ": " + TextOf(expected) + " against " + TextOf(came);
}

bool AreTheSame(const Json& a, const Json& b) {
  // As numbers, 0.0 and -0.0 are equal, and so are 5 and 5.0.
  return a == b && a.dump() == b.dump();
}

}  // namespace tof::recording
