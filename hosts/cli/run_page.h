// The report page of a run, where one is asked for.
#pragma once

#include <filesystem>
#include <optional>

#include "hosts/cli/output_file.h"
#include "hosts/cli/run_watch.h"

namespace tof::cli {

class RunPage {
 public:
  // Nothing at all without a `path`. Raises an InputError when the file can't be written.
  explicit RunPage(const std::filesystem::path& path);

  // What the calibrator is to work with from now on: the instrument, watched when there is a page
  // to write. Both outlive the page.
  InstrumentFactory& Follow(standin::StandInInstrument& instrument, native::PortableHost& host);

  // Raises an InputError when the page can't be written in full.
  void Deliver(const CalibrationReport& report);

 private:
  std::optional<OutputFile> file_;
  std::optional<RunWatch> watch_;
};

}  // namespace tof::cli
