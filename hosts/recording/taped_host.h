// The host on a tape: its services, the objects that it makes, and where the event goes.
#pragma once

#include <memory>
#include <utility>

#include "component/calibration/driver.h"
#include "component/calibrator/host_services.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedLateBoundObject : public LateBoundObject {
 public:
  TapedLateBoundObject(Tape& tape, ObjectNumber number, std::shared_ptr<LateBoundObject> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  Variant GetProperty(std::string_view name) override;
  void PutProperty(std::string_view name, const Variant& value) override;
  Variant Call(std::string_view method, const std::vector<Variant>& arguments) override;

 private:
  TapedObject object_;
  std::shared_ptr<LateBoundObject> inner_;
};

class TapedHost : public HostServices {
 public:
  // `inner` is the host that is recorded; none in a replay, which waits for nothing and shows
  // nothing. Both outlive the host.
  TapedHost(Tape& tape, HostServices* inner) : object_(tape, {}), inner_(inner) {}

  void Sleep(std::int32_t milliseconds) override;
  void ProcessPendingMessages() override;
  DateTime Now() override;
  std::string DateTimeText(const DateTime& moment) override;
  std::uint32_t RandomSeed() override;
  void ShowMessageBox(const std::string& text) override;
  std::shared_ptr<FileSystem> CreateFileSystem() override;
  std::shared_ptr<LateBoundObject> CreateObject(const std::string& prog_id) override;

 private:
  TapedObject object_;
  HostServices* inner_;
};

class TapedStatusEvents : public StatusEvents {
 public:
  // As for the host.
  TapedStatusEvents(Tape& tape, StatusEvents* inner) : object_(tape, {}), inner_(inner) {}

  void evtNewStatus(std::int32_t lStatus, const std::string& strMessage) override;

 private:
  TapedObject object_;
  StatusEvents* inner_;
};

}  // namespace tof::recording
