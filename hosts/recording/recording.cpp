#include "hosts/recording/recording.h"

#include <string_view>
#include <utility>

#include "hosts/recording/line_seal.h"
#include "hosts/recording/recording_file.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::recording {
namespace {

using spectra::InputError;
using spectra::Quoted;

Answer AnswerOf(const Json& json) {
  if (json.contains("raises")) return {{}, DecodedMember<AutomationError>(json, "raises")};
  return {Member(json, "gives"), std::nullopt};
}

Entry CallOf(const Json& json) {
  Entry entry;
  entry.kind = EntryKind::kCall;
  entry.number = DecodedMember<std::int32_t>(json, "call");
  entry.name = DecodedMember<std::string>(json, "do");
  if (json.contains("on")) entry.on = DecodedMember<ObjectNumber>(json, "on");
  entry.arguments = Member(json, "with");
  return entry;
}

Entry EntryOf(const Json& json) {
  if (json.contains("call")) {
    Entry entry = CallOf(json);
    entry.answer = AnswerOf(json);
    return entry;
  }
  Entry entry;
  if (json.contains("begin")) {
    entry.kind = EntryKind::kBegin;
    entry.name = DecodedMember<std::string>(json, "begin");
    entry.arguments = Member(json, "with");
    return entry;
  }
  entry.kind = EntryKind::kEnd;
  entry.name = DecodedMember<std::string>(json, "end");
  entry.answer = AnswerOf(json);
  return entry;
}

// Reads line by line; each must continue the check sum of those before it.
class Reader {
 public:
  Reader(std::string_view text, std::string source) : text_(text) {
    recording_.source = std::move(source);
  }

  Recording Read() {
    ReadHeader();
    while (!closed_) {
      ++line_;
      const auto line = NextLine();
      if (!line) return EndEarly();
      Take(Checked(*line));
    }
    if (text_.empty()) return std::move(recording_);
    ++line_;
    Fail(Quoted(text_.substr(0, text_.find('\n'))), "nothing behind the closing line");
  }

 private:
  [[noreturn]] void Fail(const std::string& found, const std::string& expected) const {
    throw InputError({recording_.source, line_, 1}, found, expected);
  }

  // None when the text ends before the line does.
  std::optional<std::string_view> NextLine() {
    const std::size_t end = text_.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view line = text_.substr(0, end);
    text_.remove_prefix(end + 1);
    return line;
  }

  // The version is looked at first: another one may have other check sums.
  void ReadHeader() {
    constexpr const char* kExpected = "the first line of a recording";
    line_ = 1;
    if (text_.empty()) Fail("an empty file", kExpected);
    const std::string_view start = text_.substr(0, text_.find('\n'));
    const Json json = Json::parse(start, nullptr, false);
    if (!json.is_object() || !json.contains(kFormatKey)) Fail(Quoted(start), kExpected);
    const Json& version = json[kFormatKey];
    if (version != kFormatVersion) {
      Fail("a recording of version " + version.dump(-1, ' ', true, Json::error_handler_t::replace),
           "version " + std::to_string(kFormatVersion));
    }
    const auto line = NextLine();
    if (!line) Fail("a file that ends within its first line", kExpected);
    recording_.program = Typed<std::string>(Checked(*line), "program");
  }

  Json Checked(std::string_view line) {
    const auto sealed = Unsealed(line);
    if (!sealed) Fail(Quoted(line), "a line of a recording, with its check sum");
    sum_ = Continued(sum_, sealed->content);
    if (sum_ != sealed->sum) {
      Fail("the check sum of another text",
           "that of this line and all before it: one was changed, removed or added");
    }
    Json json = Json::parse(line, nullptr, false);
    if (!json.is_object()) Fail(Quoted(line), "a line of a recording");
    return json;
  }

  template <class T>
  T Typed(const Json& json, const char* key) const {
    try {
      return DecodedMember<T>(json, key);
    } catch (const MalformedValue& error) {
      throw InputError({recording_.source, line_, 1}, Quoted(json.dump()), error.what());
    }
  }

  void Take(const Json& json) {
    if (json.contains("closed")) {
      closed_ = true;
      return;
    }
    try {
      Add(EntryOf(json));
    } catch (const MalformedValue& error) {
      Fail("an entry that can't be read", error.what());
    }
  }

  void Add(Entry entry) {
    entry.line = line_;
    if (entry.kind == EntryKind::kCall && entry.number != ++calls_) {
      Fail("call " + std::to_string(entry.number), "call " + std::to_string(calls_));
    }
    recording_.entries.push_back(std::move(entry));
  }

  // What is left is the beginning of a line, which may be a call that never came back.
  Recording EndEarly() {
    const Json json = Json::parse(std::string(text_) + "}", nullptr, false);
    if (json.is_object() && json.contains("call") && !json.contains("gives") &&
        !json.contains("raises")) {
      AddUnfinished(json);
    } else {
      recording_.cut = {line_, text_.empty() ? "the end of the file" : "a line without its end"};
    }
    return std::move(recording_);
  }

  void AddUnfinished(const Json& json) {
    try {
      Add(CallOf(json));
    } catch (const MalformedValue&) {
      recording_.cut = {line_, "a line without its end"};
      return;
    }
    recording_.cut = {line_, "a call of " + recording_.entries.back().name + " without its answer"};
  }

  std::string_view text_;  // what is not read yet
  std::size_t line_ = 0;
  std::uint32_t sum_ = 0;
  std::int64_t calls_ = 0;
  bool closed_ = false;
  Recording recording_;
};

}  // namespace

Recording RecordingOf(const std::string& text, const std::string& source) {
  return Reader(text, source).Read();
}

Recording ReadRecording(const std::filesystem::path& path) {
  return RecordingOf(spectra::ReadWholeFile(path), path.string());
}

}  // namespace tof::recording
