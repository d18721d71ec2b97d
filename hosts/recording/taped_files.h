// Text files on a tape: those of the host and those that the instrument's software opens.
#pragma once

#include <memory>
#include <utility>

#include "component/calibrator/collaborators.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedTextStream : public TextStream {
 public:
  TapedTextStream(Tape& tape, ObjectNumber number, std::shared_ptr<TextStream> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  void WriteLine(std::string_view text) override;
  void Close() override;

 private:
  TapedObject object_;
  std::shared_ptr<TextStream> inner_;
};

class TapedFileSystem : public FileSystem {
 public:
  TapedFileSystem(Tape& tape, ObjectNumber number, std::shared_ptr<FileSystem> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  bool FileExists(const std::string& path) override;
  std::shared_ptr<TextStream> OpenForAppending(const std::string& path) override;
  std::shared_ptr<TextStream> CreateTextFile(const std::string& path) override;

 private:
  TapedObject object_;
  std::shared_ptr<FileSystem> inner_;
};

class TapedCalibLogFiles : public CalibLogFiles {
 public:
  TapedCalibLogFiles(Tape& tape, ObjectNumber number, std::shared_ptr<CalibLogFiles> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  std::shared_ptr<TextStream> OpenLogFile(const std::string& prefix, const std::string& header,
                                          const std::string& extension) override;
  std::string JoinAsCsvLine(const std::array<Variant, 6>& values) override;

 private:
  TapedObject object_;
  std::shared_ptr<CalibLogFiles> inner_;
};

}  // namespace tof::recording
