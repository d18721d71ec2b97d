#include "hosts/cli/log_folder.h"

#include <filesystem>
#include <system_error>

#include "hosts/cli/output_file.h"
#include "hosts/native/native_file_system.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {

void PrepareLogFolder(const std::string& base_folder) {
  const std::filesystem::path folder = native::NativePath(base_folder) / "Logfiles";
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    throw spectra::InputError({folder.string()}, error.message(), "a folder that can be made");
  }
  const OutputFile removed_again(folder / "writable");
}

}  // namespace tof::cli
