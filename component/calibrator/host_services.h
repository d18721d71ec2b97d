// What the calibrator asks of the process it runs in. Everything that is time, chance, a file or a
// window passes through here, so that a test or a simulation can stand in for it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "component/automation/late_bound_object.h"
#include "component/automation/number_text.h"

namespace tof {

// An open text file: single-byte characters, lines end in CR LF. Closed at the latest with the
// object.
class TextStream {
 public:
  virtual ~TextStream() = default;
  virtual void WriteLine(std::string_view text) = 0;
  virtual void Close() = 0;  // closing twice does nothing
};

// Paths use the backslash, as in "C:\Instrument\Logfiles\a.txt"; a host with other separators
// translates. Errors: 53, 70 or 76 with their usual texts.
class FileSystem {
 public:
  virtual ~FileSystem() = default;
  virtual bool FileExists(const std::string& path) = 0;
  virtual std::shared_ptr<TextStream> OpenForAppending(
      const std::string& path) = 0;  // made if missing
  virtual std::shared_ptr<TextStream> CreateTextFile(
      const std::string& path) = 0;  // replaced if there
};

class HostServices {
 public:
  virtual ~HostServices() = default;

  virtual void Sleep(std::int32_t milliseconds) = 0;
  // Lets the host process its pending user-interface messages.
  virtual void ProcessPendingMessages() = 0;

  // The host's local date and time.
  virtual DateTime Now() = 0;
  // A date and time in the user's own format, for log headers.
  virtual std::string DateTimeText(const DateTime& moment) = 0;
  // A seed for pseudo-random numbers that differs from call to call, e.g. from the clock.
  virtual std::uint32_t RandomSeed() = 0;

  // Shows a text with an OK button and waits for it.
  virtual void ShowMessageBox(const std::string& text) = 0;

  virtual std::shared_ptr<FileSystem> CreateFileSystem() = 0;
  // Creates an object of another component; error 429 when the ProgID is not registered.
  virtual std::shared_ptr<LateBoundObject> CreateObject(const std::string& prog_id) = 0;
};

}  // namespace tof
