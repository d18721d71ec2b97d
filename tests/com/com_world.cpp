#include "tests/com/com_world.h"

// The identities are defined in this file.
#include <initguid.h>
#include <vorninstrument.h>
#include <vorntofcaliblib.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "hosts/com/instrument_objects/collaborators.h"
#include "hosts/com/instrument_objects/mass_time_objects.h"
#include "hosts/com/server/class_factory.h"

namespace tof::com {
namespace {

namespace fs = std::filesystem;

constexpr int kMassTimeLibrary = 2;  // the resource of this program

fs::path NewFolder() {
  static int folders = 0;
  const fs::path folder =
      fs::temp_directory_path() /
      ("com_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++folders));
  fs::create_directories(folder / "Logfiles");
  return folder;
}

}  // namespace

CalibratorDll::CalibratorDll() : module_(LoadLibraryW(Path().c_str())) {
  EXPECT_NE(module_, nullptr) << "vorntofcaliblib.dll is not beside the test program";
}

CalibratorDll::~CalibratorDll() {
  FreeLibrary(module_);
}

std::wstring CalibratorDll::Path() {
  std::wstring path = ModulePath();
  path.erase(path.find_last_of(L'\\') + 1);
  return path + L"vorntofcaliblib.dll";
}

template <class Function>
Function* CalibratorDll::Export(const char* name) const {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
}

HRESULT CalibratorDll::GetClassObject(REFCLSID class_id, REFIID iid, void** object) const {
  return Export<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject")(class_id, iid,
                                                                               object);
}
HRESULT CalibratorDll::CanUnloadNow() const {
  return Export<HRESULT WINAPI()>("DllCanUnloadNow")();
}
HRESULT CalibratorDll::RegisterServer() const {
  return Export<HRESULT WINAPI()>("DllRegisterServer")();
}
HRESULT CalibratorDll::UnregisterServer() const {
  return Export<HRESULT WINAPI()>("DllUnregisterServer")();
}

ComWorld::ComWorld() : host(journal), instrument(journal, host), base_folder(NewFolder()) {
  instrument.base_folder = base_folder.string();
  instrument.settings["Calibration/AICSettlingTime_sec"] = 0.0;  // waits are real here
  // The types that the collaborators hand to each other are looked up in the registry.
  std::wstring name = EmbeddedTypeLibraryName(kMassTimeLibrary);
  EXPECT_EQ(RegisterTypeLib(EmbeddedTypeLibrary(kMassTimeLibrary).get(), name.data(), nullptr),
            S_OK);
}

ComWorld::~ComWorld() {
  fs::remove_all(base_folder);
}

void ComWorld::TearDown() {
  EXPECT_EQ(dll.CanUnloadNow(), S_OK) << "the calibrator's DLL still has objects";
  for (const DWORD cookie : registered_) CoRevokeClassObject(cookie);
  EXPECT_EQ(ModuleReferences(), 0) << "objects of the instrument were not released";
}

template <class Interface>
void ComWorld::Offer(REFCLSID class_id, const std::vector<CLSID>& without,
                     std::function<Interface*()> create) {
  if (std::find(without.begin(), without.end(), class_id) != without.end()) return;
  const auto factory = NewObject<ClassFactory>(
      [create] { return ComPtr<Interface>::Adopt(create()).template As<IUnknown>(); },
      "the fake instrument");
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(class_id, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                  &cookie),
            S_OK);
  registered_.push_back(cookie);
}

void ComWorld::RegisterInstrument(const std::vector<CLSID>& without) {
  fakes::FakeInstrument* fake = &instrument;
  Offer<IDataDictionary>(__uuidof(::DataDictionary), without, [fake] {
    return NewObject<DataDictionaryObject>(fake->CreateDataDictionary()).Detach();
  });
  Offer<IAcqController>(__uuidof(::AcqController), without, [fake] {
    return NewObject<AcqControllerObject>(fake->CreateAcqController()).Detach();
  });
  Offer<ISpecParser>(__uuidof(::SpecParser), without, [fake] {
    return NewObject<SpecParserObject>(fake->CreateSpecParser()).Detach();
  });
  Offer<ICalibLogFiles>(__uuidof(::CalibLogFiles), without, [fake] {
    return NewObject<CalibLogFilesObject>(fake->CreateCalibLogFiles()).Detach();
  });
  Offer<ITuneFlags>(__uuidof(::TuneFlags), without, [fake] {
    return NewObject<TuneFlagsObject>(fake->CreateTuneFlags()).Detach();
  });
  Offer<ICalibSettings>(__uuidof(::CalibSettings), without, [fake] {
    return NewObject<CalibSettingsObject>(fake->CreateCalibSettings()).Detach();
  });
  Offer<IInstrumentPaths>(__uuidof(::InstrumentPaths), without, [fake] {
    return NewObject<InstrumentPathsObject>(fake->GetInstrumentPaths()).Detach();
  });
  Offer<IMassCalCoefficients>(__uuidof(::MassCalCoefficients), without, [fake] {
    return NewCoefficientsObject(fake->CreateMassCalCoefficients());
  });
  Offer<IPeakList>(__uuidof(::PeakList), without,
                   [fake] { return NewPeakListObject(fake->CreatePeakList()); });
}

HRESULT ComWorld::Create(ComPtr<_TofCalibrator>& calibrator) const {
  void* factory = nullptr;
  const HRESULT got = dll.GetClassObject(__uuidof(::TofCalibrator), IID_IClassFactory, &factory);
  if (FAILED(got)) return got;
  void* object = nullptr;
  const HRESULT result = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(factory))
                             ->CreateInstance(nullptr, __uuidof(_TofCalibrator), &object);
  if (SUCCEEDED(result)) {
    calibrator = ComPtr<_TofCalibrator>::Adopt(static_cast<_TofCalibrator*>(object));
  }
  return result;
}

ComPtr<_TofCalibrator> ComWorld::Created() const {
  ComPtr<_TofCalibrator> calibrator;
  EXPECT_EQ(Create(calibrator), S_OK) << ErrorLeftBy(E_FAIL).description();
  return calibrator;
}

HRESULT ComWorld::Calibrate(_TofCalibrator& calibrator,
                            ComPtr<IMassCalCoefficients>& coefficients) {
  const OwnedVariant masses = ToVariant(BoundedArray<double>(instrument.sample_masses));
  VARIANT averaged = times.Detach();
  VARIANT_BOOL ok_to_fail = VARIANT_FALSE;
  double weighting = -1.0;
  const HRESULT result = calibrator.calibrateTOFMassAxis(&n_spectra, masses.get(), &averaged,
                                                         &suppress_aic, &ok_to_fail, &manual,
                                                         &weighting, &window, coefficients.Out());
  times = OwnedVariant(averaged);
  return result;
}

ComPtr<Sink> ComWorld::Connect(_TofCalibrator& calibrator) {
  const auto container = ComPtr<_TofCalibrator>(&calibrator).As<IConnectionPointContainer>();
  ComPtr<IConnectionPoint> point;
  EXPECT_EQ(container->FindConnectionPoint(__uuidof(__TofCalibrator), point.Out()), S_OK);
  ComPtr<Sink> sink = NewObject<Sink>();
  EXPECT_EQ(point->Advise(sink.get(), &connection_), S_OK);
  return sink;
}

void ComWorld::Disconnect(_TofCalibrator& calibrator) {
  const auto container = ComPtr<_TofCalibrator>(&calibrator).As<IConnectionPointContainer>();
  ComPtr<IConnectionPoint> point;
  EXPECT_EQ(container->FindConnectionPoint(__uuidof(__TofCalibrator), point.Out()), S_OK);
  EXPECT_EQ(point->Unadvise(connection_), S_OK);
}

std::string ComWorld::LogFile(const std::string& begin) const {
  for (const auto& entry : fs::directory_iterator(base_folder / "Logfiles")) {
    if (entry.path().filename().string().rfind(begin, 0) != 0) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  return {};
}

}  // namespace tof::com
