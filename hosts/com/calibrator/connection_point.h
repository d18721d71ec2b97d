// Where hosts connect their event sinks.
#pragma once

#include <string>
#include <vector>

#include "hosts/com/automation/com_ptr.h"

namespace tof::com {

struct Connection {
  DWORD cookie;
  ComPtr<IDispatch> sink;
};

// The one connection point of an object, for the events of a dispatch interface. Lives inside its
// owner, whose references it counts.
class ConnectionPoint final : public IConnectionPoint {
 public:
  ConnectionPoint(IConnectionPointContainer& owner, REFIID events)
      : owner_(owner), events_(events) {}
  ConnectionPoint(const ConnectionPoint&) = delete;
  ConnectionPoint& operator=(const ConnectionPoint&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }

  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override;
  HRESULT STDMETHODCALLTYPE
  GetConnectionPointContainer(IConnectionPointContainer** container) override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

  REFIID Events() const { return events_; }

  // The sinks that are connected now; a sink may disconnect itself or others while it is called.
  std::vector<ComPtr<IDispatch>> Sinks() const;

 private:
  IConnectionPointContainer& owner_;
  IID events_;
  std::vector<Connection> connections_;
  DWORD last_cookie_ = 0;
};

// The enumeration of the one connection point.
ComPtr<IEnumConnectionPoints> EnumerateOnly(IConnectionPoint* point);

}  // namespace tof::com
