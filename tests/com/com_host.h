// What a host of COM objects does: it enters COM, calls by name and listens to events.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/owned_variant.h"
#include "hosts/com/server/com_object.h"

namespace tof::com {

// COM on the calling thread, as a single-threaded apartment.
struct Apartment {
  Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

// Receives the events. An object of the test's own: it outlives what it is connected to.
class Sink final : public ComObject<Sink, IDispatch> {
 public:
  std::vector<std::pair<LONG, std::string>> events;
  std::function<void()> on_event = [] {};
  HRESULT answer = S_OK;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                                   EXCEPINFO* exception, UINT*) override;
};

// What a late-bound call came to.
struct CallOutcome {
  HRESULT result = S_OK;
  OwnedVariant value;
  AutomationError error{0, ""};  // of a DISP_E_EXCEPTION
};

// Calls a member by name with variants in the order of its declaration.
CallOutcome CallByName(IDispatch& object, const wchar_t* name, std::vector<VARIANT> arguments);

}  // namespace tof::com
