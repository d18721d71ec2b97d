// The data dictionary on a tape, with the objects that it gives.
#pragma once

#include <memory>
#include <utility>

#include "component/calibrator/collaborators.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedSetpointTable : public SetpointTable {
 public:
  TapedSetpointTable(Tape& tape, ObjectNumber number, std::shared_ptr<SetpointTable> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  Variant GetSetpoint(std::int32_t id) override;
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override;
  Variant GetCurrentValue(std::int32_t id) override;

 private:
  TapedObject object_;
  std::shared_ptr<SetpointTable> inner_;
};

class TapedSpectrumDisplay : public SpectrumDisplay {
 public:
  TapedSpectrumDisplay(Tape& tape, ObjectNumber number, std::shared_ptr<SpectrumDisplay> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  void SetDisplayUpdate(bool live) override;

 private:
  TapedObject object_;
  std::shared_ptr<SpectrumDisplay> inner_;
};

class TapedStatusReader : public StatusReader {
 public:
  TapedStatusReader(Tape& tape, ObjectNumber number, std::shared_ptr<StatusReader> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override;

 private:
  TapedObject object_;
  std::shared_ptr<StatusReader> inner_;
};

class TapedDataDictionary : public DataDictionary {
 public:
  TapedDataDictionary(Tape& tape, ObjectNumber number, std::shared_ptr<DataDictionary> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  void Initialize() override;
  std::shared_ptr<SetpointTable> GetSetpointTable() override;
  std::shared_ptr<SpectrumDisplay> GetConfigObject() override;
  std::string GetFlagKey() override;
  double GetTimeValue() override;
  std::int32_t GetAcqStartTime() override;
  std::int32_t GetAcqEndTime() override;
  std::shared_ptr<StatusReader> GetStatusReader() override;
  std::string GetModeName() override;
  bool ModeUsesRfSetpoints(const std::string& mode_name) override;

 private:
  TapedObject object_;
  std::shared_ptr<DataDictionary> inner_;
};

}  // namespace tof::recording
