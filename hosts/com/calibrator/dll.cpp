// The functions that COM and regsvr32 call in vorntofcaliblib.dll.

#include "hosts/com/automation/windows_headers.h"

// The identities are defined in this file.
#include <initguid.h>

#include <vorntofcaliblib.h>

#include "hosts/com/calibrator/calibrator_object.h"
#include "hosts/com/calibrator/thread_module_state.h"
#include "hosts/com/server/class_factory.h"
#include "hosts/com/server/registration.h"

namespace tof::com {
namespace {

std::vector<RegisteredClass> Classes() {
  return {{.class_id = __uuidof(::TofCalibrator),
           .prog_id = "vorntofcaliblib.TofCalibrator",
           .description = "TOF mass-axis calibrator",
           .type_library_id = LIBID_vorntofcaliblib}};
}

ComPtr<IUnknown> NewCalibrator() {
  EnsureModuleState();
  return NewObject<CalibratorObject>().As<IUnknown>();
}

}  // namespace
}  // namespace tof::com

STDAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** object) {
  using namespace tof::com;  // NOLINT(google-build-using-namespace): the function is outside of it
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (class_id != __uuidof(::TofCalibrator)) return CLASS_E_CLASSNOTAVAILABLE;
  ComPtr<ClassFactory> factory;
  const HRESULT made = AtBoundary(iid, "vorntofcaliblib", [&] {
    factory = NewObject<ClassFactory>(&NewCalibrator, "vorntofcaliblib.TofCalibrator");
  });
  return FAILED(made) ? made : factory->QueryInterface(iid, object);
}

// Without objects the module's state on this thread ends: the calibration log is closed, the trace
// component released.
STDAPI DllCanUnloadNow() {
  if (tof::com::ModuleReferences() != 0) return S_FALSE;
  tof::com::ReleaseModuleState();
  return tof::com::ModuleStates() == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return tof::com::RegisterModule(tof::com::Classes());
}

STDAPI DllUnregisterServer() {
  return tof::com::UnregisterModule(tof::com::Classes());
}
