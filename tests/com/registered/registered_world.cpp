#include "tests/com/registered/registered_world.h"

// The identities are defined in this file.
#include <initguid.h>
#include <vorninstrument.h>
#include <vorninstrumentcontrol.h>
#include <vorntofcaliblib.h>

#include <fstream>
#include <iterator>

#include "component/automation/convert.h"
#include "hosts/com/automation/safe_array.h"
#include "hosts/com/automation/variant_conversion.h"

namespace tof::com {
namespace {

namespace fs = std::filesystem;

fs::path NewFolder() {
  static int folders = 0;
  const fs::path folder =
      fs::temp_directory_path() / ("registered_test_" + std::to_string(GetCurrentProcessId()) +
                                   "_" + std::to_string(++folders));
  fs::create_directories(folder);
  return folder;
}

HRESULT CanUnload(const wchar_t* dll) {
  const HMODULE module = GetModuleHandleW(dll);
  if (module == nullptr) return S_OK;  // it is gone
  return reinterpret_cast<HRESULT(WINAPI*)()>(
      reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")))();
}

ComPtr<IConnectionPoint> PointOf(_TofCalibrator& calibrator) {
  const auto container = ComPtr<_TofCalibrator>(&calibrator).As<IConnectionPointContainer>();
  ComPtr<IConnectionPoint> point;
  EXPECT_EQ(container->FindConnectionPoint(__uuidof(__TofCalibrator), point.Out()), S_OK);
  return point;
}

std::vector<double> NumbersIn(const Variant& array) {
  const BoundedArray<double> numbers = MassesFromCaller(array);
  return {numbers.begin(), numbers.end()};
}

}  // namespace

FileContents FilesIn(const fs::path& folder) {
  FileContents contents;
  for (const auto& entry : fs::directory_iterator(folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    contents[entry.path().filename().string()] = {std::istreambuf_iterator<char>(file),
                                                  std::istreambuf_iterator<char>()};
  }
  return contents;
}

RegisteredWorld::RegisteredWorld()
    : base_folder(NewFolder()), control(CreateDispatchObject("vorninstrument.InstrumentControl")) {
  LoadBuiltIn();
}

RegisteredWorld::~RegisteredWorld() {
  fs::remove_all(base_folder);
}

void RegisteredWorld::TearDown() {
  control.reset();
  EXPECT_EQ(CanUnloadCalibrator(), S_OK) << "it still has objects";
  EXPECT_EQ(CanUnloadInstrument(), S_OK) << "it still has objects";
}

HRESULT RegisteredWorld::CanUnloadCalibrator() {
  return CanUnload(L"vorntofcaliblib.dll");
}
HRESULT RegisteredWorld::CanUnloadInstrument() {
  return CanUnload(L"vorninstrument.dll");
}

void RegisteredWorld::LoadBuiltIn() {
  control->Call("LoadDescription", "", "");
  for (const std::string& setting : kNoWaits) control->Call("OverrideSetting", setting);
  control->PutProperty("BaseFolder", OwnedVariant::Of(base_folder.string().c_str()));
}

void RegisteredWorld::LoadExample(const std::string& name, const fs::path& data_folder) {
  control->Call("LoadDescription", TOF_SOURCE_DIR "/examples/recorded/" + name + ".xml",
                data_folder.string());
  control->PutProperty("BaseFolder", OwnedVariant::Of(base_folder.string().c_str()));
}

std::vector<double> RegisteredWorld::Masses() {
  return NumbersIn(FromVariant(control->GetProperty("Masses").get()));
}

LONG RegisteredWorld::Number(const char* property) {
  return ToInt32(FromVariant(control->GetProperty(property).get()));
}

LONG RegisteredWorld::Calls(const char* operation) {
  return ToInt32(FromVariant(control->Call("Calls", operation).get()));
}

ComPtr<_TofCalibrator> RegisteredWorld::NewCalibrator() const {
  CLSID class_id{};
  EXPECT_EQ(CLSIDFromProgID(L"vorntofcaliblib.TofCalibrator", &class_id), S_OK);
  void* object = nullptr;
  const HRESULT result =
      CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(_TofCalibrator), &object);
  EXPECT_EQ(result, S_OK) << ErrorLeftBy(result).description();
  return ComPtr<_TofCalibrator>::Adopt(static_cast<_TofCalibrator*>(object));
}

CalibrationResult RegisteredWorld::Calibrate(const CalibrationRequest& request) const {
  return Calibrate(*NewCalibrator().get(), request);
}

CalibrationResult RegisteredWorld::Calibrate(_TofCalibrator& calibrator,
                                             const CalibrationRequest& request) {
  const auto point = PointOf(calibrator);
  const auto sink = NewObject<Sink>();
  DWORD cookie = 0;
  EXPECT_EQ(point->Advise(sink.get(), &cookie), S_OK);
  const OwnedVariant masses = ToVariant(BoundedArray<double>(request.masses));
  VARIANT times;
  VariantInit(&times);
  short spectra = request.spectra;
  VARIANT_BOOL suppress = request.suppress_aic ? VARIANT_TRUE : VARIANT_FALSE;
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(calibrator.calibrateTOFMassAxis(&spectra, masses.get(), &times, &suppress, nullptr,
                                            nullptr, nullptr, nullptr, coefficients.Out()),
            S_OK);
  point->Unadvise(cookie);
  const OwnedVariant owned_times(times);
  CalibrationResult result;
  result.events = sink->events;
  if (!coefficients) return result;
  result.times_ns = NumbersIn(FromVariant(owned_times.get()));
  OwnedVariant record;
  EXPECT_EQ(coefficients->GetCoefficientRecord(record.Out()), S_OK);
  result.coefficients = CoefficientRecordIn(record.get());
  return result;
}

}  // namespace tof::com
