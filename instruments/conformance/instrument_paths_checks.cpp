#include <array>

#include "component/calibrator/log_paths.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

std::shared_ptr<InstrumentPaths> PathsOf(Subject& subject) {
  return Given("InstrumentFactory.gives-the-shared-objects", [&] {
    auto paths = subject.parts.factory->GetInstrumentPaths();
    Need(paths);
    return paths;
  });
}

void BaseFolderEndsWithoutASeparator(Subject& subject) {
  const std::string folder = PathsOf(subject)->GetBaseFolder();
  Require(!folder.empty() && folder.back() != '\\' && folder.back() != '/',
          "a folder without a separator at its end", "\"" + folder + "\"");
}

void LogFolderCanBeWritten(Subject& subject) {
  PathsOf(subject);
  const std::string path = LogFilePath(subject.parts, "ConformanceCheck.txt");
  const auto files = subject.host.CreateFileSystem();
  const auto error = ErrorRaisedBy([&] {
    for (int i = 0; i < 2; ++i) {
      const auto file = Need(files).OpenForAppending(path);
      Need(file).WriteLine("a line of the conformance check");
      file->Close();
    }
  });
  Require(!error, "a file that lines can be appended to, " + path,
          error ? error->text : std::string());
}

constexpr std::array kChecks{
    Check{
        "InstrumentPaths", "base-folder-ends-without-a-separator",
        "\"\\Logfiles\\\" is put behind the base folder to name the log files: it is not empty and "
        "has no separator of its own at the end.",
        BaseFolderEndsWithoutASeparator},
    Check{"InstrumentPaths", "log-folder-can-be-written",
          "The folder Logfiles of the base folder exists and files in it can be appended to: the "
          "first log that can't be written ends a calibration.",
          LogFolderCanBeWritten},
};

}  // namespace

std::span<const Check> InstrumentPathsChecks() {
  return kChecks;
}

}  // namespace tof::conformance
