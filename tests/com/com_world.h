// A host process in small: COM on this thread, the fake instrument behind its published classes,
// and the calibrator's DLL.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vorntofcaliblib.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "hosts/com/automation/safe_array.h"
#include "hosts/com/automation/variant_conversion.h"
#include "tests/com/com_host.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_instrument.h"

namespace tof::com {

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
