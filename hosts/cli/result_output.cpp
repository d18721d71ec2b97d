#include "hosts/cli/result_output.h"

#include "instruments/spectra/input_error.h"

namespace tof::cli {

ResultOutput::ResultOutput(const std::filesystem::path& json_file, std::ostream& standard_output)
    : standard_output_(standard_output), json_to_standard_output_(json_file == "-") {
  if (!json_file.empty() && !json_to_standard_output_) file_.emplace(json_file);
}

void ResultOutput::Print(const std::string& text) {
  standard_output_ << text << std::flush;
  if (!standard_output_) {
    throw spectra::InputError({"standard output"}, "a write that failed", "room for the result");
  }
}

}  // namespace tof::cli
