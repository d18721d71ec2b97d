#include "hosts/com/calibrator/connection_point.h"

#include <algorithm>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/calibrator/enumeration.h"

namespace tof::com {
namespace {

CONNECTDATA GiveConnection(const Connection& kept) {
  CONNECTDATA data{};
  data.dwCookie = kept.cookie;
  data.pUnk = ComPtr<IDispatch>(kept.sink).Detach();
  return data;
}

IConnectionPoint* GivePoint(const ComPtr<IConnectionPoint>& kept) {
  return ComPtr<IConnectionPoint>(kept).Detach();
}

using Connections = Enumeration<IEnumConnections, CONNECTDATA, Connection, &GiveConnection>;
using Points =
    Enumeration<IEnumConnectionPoints, IConnectionPoint*, ComPtr<IConnectionPoint>, &GivePoint>;

}  // namespace

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IConnectionPoint);
  *object = known ? this : nullptr;
  if (!known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) return E_POINTER;
  *iid = events_;
  return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  *container = ComPtr<IConnectionPointContainer>(&owner_).Detach();
  return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  *cookie = 0;
  // A sink answers to the events' own identity; those of scripting hosts only to IDispatch.
  void* dispatch = nullptr;
  if (FAILED(sink->QueryInterface(events_, &dispatch)) &&
      FAILED(sink->QueryInterface(__uuidof(IDispatch), &dispatch))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  ComPtr<IDispatch> connected = ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(dispatch));
  return AtBoundary(events_, "vorntofcaliblib.TofCalibrator", [&] {
    connections_.push_back({last_cookie_ + 1, std::move(connected)});
    *cookie = ++last_cookie_;
  });
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
  const auto found = std::find_if(connections_.begin(), connections_.end(),
                                  [&](const Connection& c) { return c.cookie == cookie; });
  if (found == connections_.end()) return CONNECT_E_NOCONNECTION;
  // Released when the list is whole again: a sink's last release may call back.
  const Connection removed = std::move(*found);
  connections_.erase(found);
  return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** connections) {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  return AtBoundary(events_, "vorntofcaliblib.TofCalibrator",
                    [&] { *connections = NewObject<Connections>(connections_).Detach(); });
}

std::vector<ComPtr<IDispatch>> ConnectionPoint::Sinks() const {
  std::vector<ComPtr<IDispatch>> sinks;
  for (const Connection& c : connections_) sinks.push_back(c.sink);
  return sinks;
}

ComPtr<IEnumConnectionPoints> EnumerateOnly(IConnectionPoint* point) {
  std::vector<ComPtr<IConnectionPoint>> points;
  points.emplace_back(point);
  return ComPtr<IEnumConnectionPoints>::Adopt(NewObject<Points>(std::move(points)).Detach());
}

}  // namespace tof::com
