// What became of the files that a host wrote for the calibrator.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace tof::native {

// An AutomationError says "Disk full"; this says where, in the operating system's words.
struct FileFailure {
  std::string path;
  std::string reason;
};

struct FileJournal {
  std::vector<std::string> written;  // native paths, each once, in the order of the first opening
  std::optional<FileFailure> last_failure;

  void NoteOpened(const std::string& path) {
    if (std::find(written.begin(), written.end(), path) == written.end()) written.push_back(path);
  }
};

}  // namespace tof::native
