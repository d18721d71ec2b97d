// A host process in memory: files, a clock that moves when something sleeps, message boxes that are
// only counted, and a trace component that keeps its lines.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "component/calibrator/host_services.h"
#include "tests/support/journal.h"

namespace tof::fakes {

struct FakeFile {
  std::string bytes;
  int open_streams = 0;
};

// Keeps "Entry <name> <level>", "Exit <name> <level>" and "<name> <level>: <text>".
class FakeTrace : public LateBoundObject {
 public:
  explicit FakeTrace(Journal& journal) : journal_(journal) {}
  Variant on = true;
  std::string module_name;
  std::vector<std::string> lines;

  Variant GetProperty(std::string_view name) override;
  void PutProperty(std::string_view name, const Variant& value) override;
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override;

  // The texts that were traced, without the name and level of their routine.
  std::vector<std::string> Texts() const;

  void Forget() {
    lines.clear();
    texts_.clear();
  }

 private:
  Journal& journal_;
  std::vector<std::string> texts_;
};

class FakeHost : public HostServices {
 public:
  explicit FakeHost(Journal& journal);

  std::map<std::string, FakeFile> files;
  std::shared_ptr<FakeTrace> trace;  // none: the component is not registered
  std::vector<std::string> message_boxes;
  std::int64_t slept_ms = 0;
  DateTime start{2024, 2, 29, 13, 5, 9};
  std::uint32_t seed = 1;
  // Called while the host processes its messages, e.g. to ask for an abort.
  std::function<void()> on_messages = [] {};

  int OpenStreams() const;

  void Sleep(std::int32_t milliseconds) override;
  void ProcessPendingMessages() override;
  DateTime Now() override;
  std::string DateTimeText(const DateTime& moment) override;
  std::uint32_t RandomSeed() override;
  void ShowMessageBox(const std::string& text) override;
  std::shared_ptr<FileSystem> CreateFileSystem() override;
  std::shared_ptr<LateBoundObject> CreateObject(const std::string& prog_id) override;

  // A stream onto a file of `files`.
  std::shared_ptr<TextStream> OpenStream(const std::string& path, bool append);

 private:
  Journal& journal_;
};

}  // namespace tof::fakes
