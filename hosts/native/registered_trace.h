// The trace component that a portable host has, to follow or to stand in front of.
#pragma once

#include <memory>

#include "component/automation/error.h"
#include "hosts/native/portable_host.h"
#include "hosts/native/trace_file.h"

namespace tof::native {

// None when none is registered.
inline std::shared_ptr<LateBoundObject> RegisteredTrace(PortableHost& host) {
  try {
    return host.CreateObject(kTraceProgId);
  } catch (const AutomationError&) {
    return nullptr;
  }
}

}  // namespace tof::native
