#include "hosts/recording/recording_file.h"

#include <cerrno>
#include <system_error>

#include "hosts/recording/line_seal.h"
#include "instruments/spectra/input_error.h"

namespace tof::recording {
namespace {

std::string WithoutLastBrace(const Json& object) {
  std::string text = object.dump();
  text.pop_back();
  return text;
}

}  // namespace

RecordingFile::RecordingFile(const std::filesystem::path& path, const std::string& program) {
  errno = 0;
  file_.reset(std::fopen(path.string().c_str(), "wb"));
  if (!file_) {
    throw spectra::InputError({path.string()}, std::generic_category().message(errno),
                              "a file that can be written");
  }
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  Line({{kFormatKey, kFormatVersion}, {"program", Encoded(program)}});
}

void RecordingFile::Begin(const Json& object) {
  const std::string text = WithoutLastBrace(object);
  sum_ = Continued(sum_, text);
  Write(text);
}

void RecordingFile::End(const Json& further_members) {
  std::string text = WithoutLastBrace(further_members);
  text.front() = ',';
  WriteSealed(text);
}

void RecordingFile::Line(const Json& object) {
  WriteSealed(WithoutLastBrace(object));
}

void RecordingFile::Close(std::int64_t calls) {
  Line({{"closed", true}, {"calls", calls}});
  if (failure_) return;
  errno = 0;
  // Released first: the stream is gone after fclose, whatever that says.
  if (std::fclose(file_.release()) != 0) Fail();
}

void RecordingFile::WriteSealed(const std::string& text) {
  sum_ = Continued(sum_, text);
  Write(text + SealOf(sum_) + "\n");
}

void RecordingFile::Write(std::string_view text) {
  if (failure_) return;
  errno = 0;
  if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) Fail();
}

void RecordingFile::Fail() {
  failure_ = std::generic_category().message(errno);
}

}  // namespace tof::recording
