#include "hosts/recording/taped_host.h"

#include "hosts/recording/taped_files.h"

namespace tof::recording {

Variant TapedLateBoundObject::GetProperty(std::string_view name) {
  return object_.Ask("LateBoundObject.GetProperty", Arguments(name),
                     [&] { return inner_->GetProperty(name); });
}

void TapedLateBoundObject::PutProperty(std::string_view name, const Variant& value) {
  object_.Ask("LateBoundObject.PutProperty", Arguments(name, value),
              [&] { inner_->PutProperty(name, value); });
}

Variant TapedLateBoundObject::Call(std::string_view method, const std::vector<Variant>& arguments) {
  return object_.Ask("LateBoundObject.Call", Arguments(method, arguments),
                     [&] { return inner_->Call(method, arguments); });
}

void TapedHost::Sleep(std::int32_t milliseconds) {
  object_.Ask("HostServices.Sleep", Arguments(milliseconds), [&] { inner_->Sleep(milliseconds); });
}

void TapedHost::ProcessPendingMessages() {
  object_.Ask("HostServices.ProcessPendingMessages", Arguments(),
              [&] { inner_->ProcessPendingMessages(); });
}

DateTime TapedHost::Now() {
  return object_.Ask("HostServices.Now", Arguments(), [&] { return inner_->Now(); });
}

std::string TapedHost::DateTimeText(const DateTime& moment) {
  return object_.Ask("HostServices.DateTimeText", Arguments(moment),
                     [&] { return inner_->DateTimeText(moment); });
}

std::uint32_t TapedHost::RandomSeed() {
  return object_.Ask("HostServices.RandomSeed", Arguments(), [&] { return inner_->RandomSeed(); });
}

void TapedHost::ShowMessageBox(const std::string& text) {
  object_.Ask("HostServices.ShowMessageBox", Arguments(text),
              [&] { inner_->ShowMessageBox(text); });
}

std::shared_ptr<FileSystem> TapedHost::CreateFileSystem() {
  return object_.AskObject<TapedFileSystem>("HostServices.CreateFileSystem", Arguments(),
                                            [&] { return inner_->CreateFileSystem(); });
}

std::shared_ptr<LateBoundObject> TapedHost::CreateObject(const std::string& prog_id) {
  return object_.AskObject<TapedLateBoundObject>("HostServices.CreateObject", Arguments(prog_id),
                                                 [&] { return inner_->CreateObject(prog_id); });
}

void TapedStatusEvents::evtNewStatus(std::int32_t lStatus, const std::string& strMessage) {
  object_.Ask("StatusEvents.evtNewStatus", Arguments(lStatus, strMessage),
              [&] { inner_->evtNewStatus(lStatus, strMessage); });
}

}  // namespace tof::recording
