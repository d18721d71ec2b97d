// Flags, settings, paths and the firmware library on a tape.
#pragma once

#include <memory>
#include <utility>

#include "component/calibrator/collaborators.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedTuneFlags : public TuneFlags {
 public:
  TapedTuneFlags(Tape& tape, ObjectNumber number, std::shared_ptr<TuneFlags> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  std::string GetFlag(const std::string& key, std::int32_t minus_one) override;

 private:
  TapedObject object_;
  std::shared_ptr<TuneFlags> inner_;
};

class TapedCalibSettings : public CalibSettings {
 public:
  TapedCalibSettings(Tape& tape, ObjectNumber number, std::shared_ptr<CalibSettings> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  void GetValue(const std::string& section, const std::string& key, std::int32_t zero,
                double& value) override;

 private:
  TapedObject object_;
  std::shared_ptr<CalibSettings> inner_;
};

class TapedInstrumentPaths : public InstrumentPaths {
 public:
  TapedInstrumentPaths(Tape& tape, ObjectNumber number, std::shared_ptr<InstrumentPaths> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  std::string GetBaseFolder() override;

 private:
  TapedObject object_;
  std::shared_ptr<InstrumentPaths> inner_;
};

class TapedFirmwareLibrary : public FirmwareLibrary {
 public:
  TapedFirmwareLibrary(Tape& tape, ObjectNumber number, std::shared_ptr<FirmwareLibrary> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  float BinarySearchForTargetAb(std::int32_t argument1, float target_min_abundance,
                                float target_max_abundance, float speed_up_factor, float argument5,
                                float argument6, float argument7, std::int32_t argument8,
                                float window_start_ns, float window_end_ns) override;

 private:
  TapedObject object_;
  std::shared_ptr<FirmwareLibrary> inner_;
};

}  // namespace tof::recording
