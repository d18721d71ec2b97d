// A host process in small: COM on this thread, the fake instrument behind its published classes,
// and the calibrator's DLL.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vorntofcaliblib.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/safe_array.h"
#include "hosts/com/automation/variant_conversion.h"
#include "hosts/com/server/com_object.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_instrument.h"

namespace tof::com {

// COM on the calling thread, as a single-threaded apartment.
struct Apartment {
  Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

// vorntofcaliblib.dll from the folder of the test program.
class CalibratorDll {
 public:
  CalibratorDll();
  ~CalibratorDll();
  CalibratorDll(const CalibratorDll&) = delete;
  CalibratorDll& operator=(const CalibratorDll&) = delete;

  HRESULT GetClassObject(REFCLSID class_id, REFIID iid, void** object) const;
  HRESULT CanUnloadNow() const;
  HRESULT RegisterServer() const;
  HRESULT UnregisterServer() const;
  static std::wstring Path();

 private:
  template <class Function>
  Function* Export(const char* name) const;

  HMODULE module_;
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

// At the end of each test every reference must have been given back.
class ComWorld : public ::testing::Test {
 protected:
  ComWorld();
  ~ComWorld() override;

  void TearDown() override;

  // The instrument's classes, without those named, until the end of the test.
  void RegisterInstrument(const std::vector<CLSID>& without = {});

  // A calibrator, or the error of its creation as error information.
  HRESULT Create(ComPtr<_TofCalibrator>& calibrator) const;
  ComPtr<_TofCalibrator> Created() const;

  // A calibration of the instrument's sample masses; `times` receives the averages.
  HRESULT Calibrate(_TofCalibrator& calibrator, ComPtr<IMassCalCoefficients>& coefficients);

  ComPtr<Sink> Connect(_TofCalibrator& calibrator);
  void Disconnect(_TofCalibrator& calibrator);

  // The bytes of a file below Logfiles, the first one whose name begins so; empty without one.
  std::string LogFile(const std::string& begin) const;

  Apartment apartment;
  fakes::Journal journal;
  fakes::FakeHost host;
  fakes::FakeInstrument instrument;
  CalibratorDll dll;
  std::filesystem::path base_folder;

  short n_spectra = 3;
  OwnedVariant times;
  VARIANT_BOOL suppress_aic = VARIANT_FALSE;
  VARIANT_BOOL manual = VARIANT_FALSE;
  double window = -1.0;

 private:
  template <class Interface>
  void Offer(REFCLSID class_id, const std::vector<CLSID>& without,
             std::function<Interface*()> create);

  std::vector<DWORD> registered_;
  DWORD connection_ = 0;
};

}  // namespace tof::com
