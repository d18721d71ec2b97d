// The component's module state (trace component, calibration log) on the threads of a COM host.
#pragma once

namespace tof::com {

// The calling thread has a module state of its own from here on. It ends, with the COM objects it
// holds, when the thread leaves COM, or with ReleaseModuleState.
void EnsureModuleState();

// Ends the calling thread's module state, for a module without objects that is about to be
// unloaded.
void ReleaseModuleState();

// On how many threads there is one.
long ModuleStates();

}  // namespace tof::com
