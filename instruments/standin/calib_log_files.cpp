#include "instruments/standin/calib_log_files.h"

#include <fmt/format.h>

#include "component/automation/convert.h"
#include "component/automation/number_text.h"

namespace tof::standin {
namespace {

std::string UnusedPath(FileSystem& files, const std::string& stem, const std::string& extension) {
  std::string path = stem + "." + extension;
  for (int number = 2; files.FileExists(path); ++number) {
    path = fmt::format("{}_{}.{}", stem, number, extension);
  }
  return path;
}

}  // namespace

std::shared_ptr<TextStream> StandInCalibLogFiles::OpenLogFile(const std::string& prefix,
                                                              const std::string& header,
                                                              const std::string& extension) {
  state_->gate.Enter(Operation::kCalibLogFilesOpenLogFile);
  const DateTime now = state_->host.Now();
  const std::string stem = state_->description.base_folder + "\\Logfiles\\" + prefix + "_" +
                           DateText(now) + "_" + TimeText(now);
  const std::shared_ptr<FileSystem> files = state_->host.CreateFileSystem();
  std::shared_ptr<TextStream> stream = files->CreateTextFile(UnusedPath(*files, stem, extension));
  stream->WriteLine(header);
  return stream;
}

std::string StandInCalibLogFiles::JoinAsCsvLine(const std::array<Variant, 6>& values) {
  state_->gate.Enter(Operation::kCalibLogFilesJoinAsCsvLine);
  std::string line = ToText(values[0]);
  for (std::size_t i = 1; i < values.size(); ++i) line += ", " + ToText(values[i]);
  return line;
}

}  // namespace tof::standin
