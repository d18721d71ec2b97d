// A folder with a recorded instrument, earlier results, and the program to run on them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/hosts/recorded_sample.h"
#include "tests/hosts/run_program.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::testing {

class ProgramTest : public ::testing::Test {
 protected:
  ProgramTest() { WriteSample(folder_.path()); }

  // On the sample, with the folder as base folder.
  ProgramResult Calibrate(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(), {"calibrate", "--instrument", folder_ / "instrument.xml",
                                         "--data", folder_.path().string()});
    return RunTofcal(WithBaseFolder(std::move(arguments)));
  }
  // On the built-in instrument.
  ProgramResult CalibrateVirtual(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(), "calibrate");
    return RunTofcal(WithBaseFolder(std::move(arguments)));
  }

  // What every file below the folder holds.
  std::map<std::string, std::string> Contents() const {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      if (entry.is_regular_file()) contents[entry.path().string()] = BytesOf(entry.path());
    }
    return contents;
  }

  TemporaryFolder folder_;

 private:
  std::vector<std::string> WithBaseFolder(std::vector<std::string> arguments) const {
    const auto given = std::find(arguments.begin(), arguments.end(), "--base-folder");
    if (given == arguments.end()) {
      arguments.insert(arguments.end(), {"--base-folder", folder_.path().string()});
    }
    return arguments;
  }
};

}  // namespace tof::testing
