#include "hosts/cli/output_file.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "instruments/spectra/input_error.h"

namespace tof::cli {
namespace {

// Where to write for `path`. A device or a pipe is written itself: it has no earlier content, and
// must not be replaced by a file.
std::filesystem::path PartOf(std::filesystem::path path) {
  std::error_code no_status;
  const auto status = std::filesystem::status(path, no_status);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) return path;
  path += ".part";
  return path;
}

}  // namespace

void RequireNotAnInput(const std::filesystem::path& output,
                       const std::vector<std::filesystem::path>& inputs) {
  for (const std::filesystem::path& input : inputs) {
    std::error_code one_does_not_exist;
    if (!std::filesystem::equivalent(output, input, one_does_not_exist)) continue;
    throw spectra::InputError({output.string()}, "a file that is also read", "another file");
  }
}

OutputFile::OutputFile(std::filesystem::path path) : path_(std::move(path)), part_(PartOf(path_)) {
  std::error_code no_status;
  if (std::filesystem::is_directory(path_, no_status)) {
    throw spectra::InputError({path_.string()}, "a folder", "a file that can be written");
  }
  errno = 0;
  file_.open(part_, std::ios::binary);
  if (!file_) Fail(std::generic_category().message(errno));
}

OutputFile::~OutputFile() {
  file_.close();
  if (committed_ || part_ == path_) return;
  std::error_code nothing_to_do_about_it;
  std::filesystem::remove(part_, nothing_to_do_about_it);
}

void OutputFile::Write(std::string_view part) {
  errno = 0;
  file_ << part;
  if (!file_) Fail(std::generic_category().message(errno));
}

void OutputFile::Commit(const std::string& content) {
  Write(content);
  Commit();
}

void OutputFile::Commit() {
  errno = 0;
  file_.close();
  if (!file_) Fail(std::generic_category().message(errno));
  if (part_ != path_) {
    std::error_code error;
    std::filesystem::rename(part_, path_, error);
    if (error) Fail(error.message());
  }
  committed_ = true;
}

void OutputFile::Fail(const std::string& reason) const {
  throw spectra::InputError({path_.string()}, reason, "a file that can be written");
}

}  // namespace tof::cli
