#include "tests/support/fake_host.h"

#include "component/automation/convert.h"

namespace tof::fakes {
namespace {

constexpr std::int32_t kNoSuchMember = 438;

class FakeStream : public TextStream {
 public:
  FakeStream(Journal& journal, std::string name, FakeFile& file)
      : journal_(journal), name_(std::move(name)), file_(file) {
    ++file_.open_streams;
  }
  ~FakeStream() override {
    if (open_) --file_.open_streams;
  }
  void WriteLine(std::string_view text) override {
    journal_.Enter("TextStream.WriteLine(" + name_ + ")");
    if (!open_) Raise(RunTimeError::kObjectVariableNotSet);
    file_.bytes += std::string(text) + "\r\n";
  }
  void Close() override {
    journal_.Enter("TextStream.Close(" + name_ + ")");
    if (open_) --file_.open_streams;
    open_ = false;
  }

 private:
  Journal& journal_;
  std::string name_;
  FakeFile& file_;
  bool open_ = true;
};

std::string NameOf(const std::string& path) {
  return path.substr(path.find_last_of('\\') + 1);
}

class FakeFileSystem : public FileSystem {
 public:
  FakeFileSystem(Journal& journal, FakeHost& host) : journal_(journal), host_(host) {}
  bool FileExists(const std::string& path) override {
    journal_.Enter("FileSystem.FileExists(" + NameOf(path) + ")");
    return host_.files.count(path) != 0;
  }
  std::shared_ptr<TextStream> OpenForAppending(const std::string& path) override {
    journal_.Enter("FileSystem.OpenForAppending(" + NameOf(path) + ")");
    return host_.OpenStream(path, true);
  }
  std::shared_ptr<TextStream> CreateTextFile(const std::string& path) override {
    journal_.Enter("FileSystem.CreateTextFile(" + NameOf(path) + ")");
    return host_.OpenStream(path, false);
  }

 private:
  Journal& journal_;
  FakeHost& host_;
};

}  // namespace

Variant FakeTrace::GetProperty(std::string_view name) {
  journal_.Enter("Trace.Get(" + std::string(name) + ")");
  if (name == "mtraceFlag") return on;
  throw AutomationError(kNoSuchMember, "Object doesn't support this property or method");
}

void FakeTrace::PutProperty(std::string_view name, const Variant& value) {
  journal_.Enter("Trace.Put(" + std::string(name) + ")");
  if (name == "mnameOfModule") module_name = ToText(value);
}

Variant FakeTrace::Call(std::string_view method, const std::vector<Variant>& arguments) {
  std::string call = "Trace." + std::string(method) + "(";
  for (const Variant& argument : arguments) {
    if (&argument != &arguments.front()) call += ",";
    call += ToText(argument);
  }
  journal_.Enter(call + ")");
  if (method == "TracePrint") {
    texts_.push_back(ToText(arguments.at(0)));
    lines.push_back(ToText(arguments.at(1)) + " " + ToText(arguments.at(2)) + ": " + texts_.back());
  } else {
    lines.push_back(std::string(method) + " " + ToText(arguments.at(0)) + " " +
                    ToText(arguments.at(1)));
  }
  return {};
}

std::vector<std::string> FakeTrace::Texts() const {
  return texts_;
}

FakeHost::FakeHost(Journal& journal)
    : trace(std::make_shared<FakeTrace>(journal)), journal_(journal) {}

int FakeHost::OpenStreams() const {
  int open = 0;
  for (const auto& [path, file] : files) open += file.open_streams;
  return open;
}

void FakeHost::Sleep(std::int32_t milliseconds) {
  journal_.Enter("Host.Sleep(" + std::to_string(milliseconds) + ")");
  slept_ms += milliseconds;
}

void FakeHost::ProcessPendingMessages() {
  journal_.Enter("Host.ProcessPendingMessages");
  on_messages();
}

DateTime FakeHost::Now() {
  journal_.Enter("Host.Now");
  // Within the hour: enough for a test that sleeps.
  const std::int64_t seconds = start.minute * 60 + start.second + slept_ms / 1000;
  DateTime now = start;
  now.hour += static_cast<int>(seconds / 3600);
  now.minute = static_cast<int>(seconds / 60 % 60);
  now.second = static_cast<int>(seconds % 60);
  return now;
}

std::string FakeHost::DateTimeText(const DateTime& moment) {
  journal_.Enter("Host.DateTimeText");
  return DateText(moment) + " at " + ColonTimeText(moment);
}

std::uint32_t FakeHost::RandomSeed() {
  journal_.Enter("Host.RandomSeed");
  return seed;
}

void FakeHost::ShowMessageBox(const std::string& text) {
  journal_.Enter("Host.ShowMessageBox(" + text + ")");
  message_boxes.push_back(text);
}

std::shared_ptr<FileSystem> FakeHost::CreateFileSystem() {
  journal_.Enter("Host.CreateFileSystem");
  return std::make_shared<FakeFileSystem>(journal_, *this);
}

std::shared_ptr<LateBoundObject> FakeHost::CreateObject(const std::string& prog_id) {
  journal_.Enter("Host.CreateObject(" + prog_id + ")");
  if (trace == nullptr) Raise(RunTimeError::kCannotCreateObject);
  return trace;
}

std::shared_ptr<TextStream> FakeHost::OpenStream(const std::string& path, bool append) {
  FakeFile& file = files[path];
  if (!append) file.bytes.clear();
  return std::make_shared<FakeStream>(journal_, NameOf(path), file);
}

}  // namespace tof::fakes
