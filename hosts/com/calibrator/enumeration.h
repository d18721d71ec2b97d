// COM's enumerations over a list that is fixed when the enumeration is made.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/server/com_object.h"

namespace tof::com {

// Interface: e.g. IEnumConnections, which gives out values of type Given. The list holds Kept
// values, of which give_out(kept) makes a Given that the caller releases.
template <class Interface, class Given, class Kept, Given (*give_out)(const Kept&)>
class Enumeration final
    : public ComObject<Enumeration<Interface, Given, Kept, give_out>, Interface> {
 public:
  explicit Enumeration(std::vector<Kept> list, std::size_t next = 0)
      : list_(std::move(list)), next_(next) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG count, Given* given, ULONG* fetched) override {
    if (given == nullptr || (count > 1 && fetched == nullptr)) return E_POINTER;
    ULONG n = 0;
    while (n < count && next_ < list_.size()) given[n++] = give_out(list_[next_++]);
    if (fetched != nullptr) *fetched = n;
    return n == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    const std::size_t left = list_.size() - next_;
    next_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    next_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(Interface** copy) override {
    if (copy == nullptr) return E_POINTER;
    *copy = nullptr;
    return AtBoundary(__uuidof(Interface), "enumeration",
                      [&] { *copy = NewObject<Enumeration>(list_, next_).Detach(); });
  }

 private:
  std::vector<Kept> list_;
  std::size_t next_;
};

}  // namespace tof::com
