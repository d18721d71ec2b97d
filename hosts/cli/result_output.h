// Where a result goes.
#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "hosts/cli/output_file.h"

namespace tof::cli {

// A table on standard output and, when a file is named, JSON in it; or the JSON alone on standard
// output when `json_file` is "-".
class ResultOutput {
 public:
  // Raises an InputError when the file can't be written.
  ResultOutput(const std::filesystem::path& json_file, std::ostream& standard_output);

  // Raises an InputError when the result can't be written in full.
  template <class Report>
  void Deliver(const Report& report) {
    if (file_) file_->Commit(JsonOf(report));
    Print(json_to_standard_output_ ? JsonOf(report) : TableOf(report));
  }

 private:
  void Print(const std::string& text);

  std::ostream& standard_output_;
  bool json_to_standard_output_;
  std::optional<OutputFile> file_;
};

}  // namespace tof::cli
