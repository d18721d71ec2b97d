// A recording while it is written.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/recording/encoding.h"

namespace tof::recording {

inline constexpr const char* kFormatKey = "tof_recording";
inline constexpr std::int32_t kFormatVersion = 1;

// A line per entry, each a JSON object: the header
//
//   {"tof_recording":1,"program":"tofcal 0.1.0","crc":"..."}
//
// then a call of the calibrator's own methods, the calls that it makes to the outside, and how it
// ended,
//
//   {"begin":"calibrateTOFMassAxis","with":{...},"crc":"..."}
//   {"call":1,"do":"HostServices.CreateObject","with":["vornutils.trace.1"],"gives":1,"crc":"..."}
//   {"call":2,"on":1,"do":"LateBoundObject.GetProperty","with":["mtraceFlag"],"gives":true,...}
//   {"call":3,"on":3,"do":"...","with":[],"raises":{"number":5,"source":"","description":"..."},...}
//   {"end":"calibrateTOFMassAxis","gives":{...},"crc":"..."}
//
// and the closing line {"closed":true,"calls":3,"crc":"..."}, which tells a whole recording from
// one that was cut.
//
// Every part is handed to the operating system at once: what a process has recorded survives it,
// down to the call in which it ended.
class RecordingFile {
 public:
  // Replaces the file. Raises an InputError when it can't be written.
  RecordingFile(const std::filesystem::path& path, const std::string& program);

  // A line in two parts: an object, and the members that are known later (an object as well, with
  // one member at least).
  void Begin(const Json& object);
  void End(const Json& further_members);
  // A line at once.
  void Line(const Json& object);

  // The closing line.
  void Close(std::int64_t calls);

  // A write that failed is the last one; the system's reason. What stands in the file before it is
  // a recording that was cut.
  const std::optional<std::string>& failure() const { return failure_; }

 private:
  struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void WriteSealed(const std::string& text);  // the end of a line, with its check sum
  void Write(std::string_view text);
  void Fail();

  std::unique_ptr<std::FILE, FileCloser> file_;
  std::uint32_t sum_ = 0;
  std::optional<std::string> failure_;
};

}  // namespace tof::recording
