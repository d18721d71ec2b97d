// The functions that COM and regsvr32 call in vorninstrument.dll.

#include "hosts/com/automation/windows_headers.h"

// The identities are defined in this file.
#include <initguid.h>

#include <vorninstrument.h>
#include <vorninstrumentcontrol.h>
#include <vornmasstime.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "hosts/com/instrument_objects/collaborators.h"
#include "hosts/com/instrument_objects/mass_time_objects.h"
#include "hosts/com/server/class_factory.h"
#include "hosts/com/server/registration.h"
#include "hosts/com/standin/control_object.h"
#include "hosts/com/standin/process_instrument.h"

namespace tof::com {
namespace {

struct ServedClass {
  RegisteredClass registered;
  ClassFactory::Create create;
};

// An automation object for a collaborator of the process's instrument.
template <class Object, class Collaborator>
ClassFactory::Create Creator(
    std::shared_ptr<Collaborator> (standin::StandInInstrument::*create)()) {
  return [create] {
    const auto process = UseInstrumentOfProcess();
    auto collaborator = (process->PresentForUse().Instrument().*create)();
    return NewObject<Object>(UsedBy(std::move(collaborator), process)).template As<IUnknown>();
  };
}

std::vector<ServedClass> Classes() {
  using standin::StandInInstrument;
  return {
      {{__uuidof(::DataDictionary), "vorninstrument.DataDictionary",
        "Data dictionary of the stand-in instrument", LIBID_VORNINSTRUMENTLib},
       Creator<DataDictionaryObject>(&StandInInstrument::CreateDataDictionary)},
      {{__uuidof(::AcqController), "vorninstrument.AcqController",
        "Acquisition control of the stand-in instrument", LIBID_VORNINSTRUMENTLib},
       Creator<AcqControllerObject>(&StandInInstrument::CreateAcqController)},
      {{__uuidof(::SpecParser), "vorninstrument.SpecParser",
        "Spectrum parser of the stand-in instrument", LIBID_VORNINSTRUMENTLib},
       Creator<SpecParserObject>(&StandInInstrument::CreateSpecParser)},
      {{__uuidof(::CalibLogFiles), "vorninstrument.CalibLogFiles",
        "Log files of the stand-in instrument", LIBID_VORNINSTRUMENTLib},
       Creator<CalibLogFilesObject>(&StandInInstrument::CreateCalibLogFiles)},
      {{__uuidof(::TuneFlags), "vorninstrument.TuneFlags", "Flags of the stand-in instrument",
        LIBID_VORNINSTRUMENTLib},
       Creator<TuneFlagsObject>(&StandInInstrument::CreateTuneFlags)},
      {{__uuidof(::CalibSettings), "vorninstrument.CalibSettings",
        "Settings of the stand-in instrument", LIBID_VORNINSTRUMENTLib},
       Creator<CalibSettingsObject>(&StandInInstrument::CreateCalibSettings)},
      {{__uuidof(::InstrumentPaths), "vorninstrument.InstrumentPaths",
        "Paths of the stand-in instrument", LIBID_VORNINSTRUMENTLib},
       Creator<InstrumentPathsObject>(&StandInInstrument::GetInstrumentPaths)},
      {{__uuidof(::MassCalCoefficients), "vornmasstime.MassCalCoefficients",
        "Coefficients of the stand-in instrument", LIBID_VORNMASSTIMELib},
       Creator<CoefficientsObject>(&StandInInstrument::CreateMassCalCoefficients)},
      {{__uuidof(::PeakList), "vornmasstime.PeakList", "Peak list of the stand-in instrument",
        LIBID_VORNMASSTIMELib},
       Creator<PeakListObject>(&StandInInstrument::CreatePeakList)},
      {{__uuidof(::InstrumentControl), "vorninstrument.InstrumentControl",
        "Control of the stand-in instrument", LIBID_VORNINSTRUMENTCONTROLLib},
       [] { return NewObject<ControlObject>().As<IUnknown>(); }},
  };
}

std::vector<RegisteredClass> RegisteredClasses() {
  std::vector<RegisteredClass> registered;
  for (const ServedClass& served : Classes()) registered.push_back(served.registered);
  return registered;
}

// None for another class.
ComPtr<ClassFactory> FactoryOf(REFCLSID class_id) {
  for (ServedClass& served : Classes()) {
    if (served.registered.class_id != class_id) continue;
    return NewObject<ClassFactory>(std::move(served.create), served.registered.prog_id);
  }
  return {};
}

}  // namespace
}  // namespace tof::com

STDAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** object) {
  using namespace tof::com;  // NOLINT(google-build-using-namespace): the function is outside of it
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  ComPtr<ClassFactory> factory;
  const HRESULT made = AtBoundary(iid, "vorninstrument", [&] { factory = FactoryOf(class_id); });
  if (FAILED(made)) return made;
  return factory ? factory->QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

// Without objects the instrument ends.
STDAPI DllCanUnloadNow() {
  if (tof::com::ModuleReferences() != 0) return S_FALSE;
  tof::com::EndInstrumentOfProcess();
  return S_OK;
}

STDAPI DllRegisterServer() {
  return tof::com::RegisterModule(tof::com::RegisteredClasses());
}

STDAPI DllUnregisterServer() {
  return tof::com::UnregisterModule(tof::com::RegisteredClasses());
}
