// The class vorntofcaliblib.TofCalibrator.
#pragma once

#include <vorntofcaliblib.h>

#include "component/calibrator/tof_calibrator.h"
#include "hosts/com/calibrator/connection_point.h"
#include "hosts/com/calibrator/windows_host.h"
#include "hosts/com/instrument_client/instrument_factory.h"
#include "hosts/com/server/dual_object.h"

namespace tof::com {

// Drives the component with the registered instrument. A call that comes in while another runs,
// from a message handler or an event sink, is refused with error 17 and changes nothing.
class CalibratorObject final : public DualObject<CalibratorObject, _TofCalibrator,
                                                 IConnectionPointContainer, IProvideClassInfo2>,
                               private StatusEvents {
 public:
  // Creates the instrument's objects; raises what the component's creation raises.
  CalibratorObject();
  ~CalibratorObject() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

  HRESULT STDMETHODCALLTYPE WriteDataToSpotFireLog() override;
  HRESULT STDMETHODCALLTYPE TestNewStuff() override;
  // Of both: optional pointers may be null, which counts as left out.
  HRESULT STDMETHODCALLTYPE GetAveragedTimesForCalibration(VARIANT varExpectedMasses,
                                                           short* nAvgSpectra,
                                                           VARIANT_BOOL* bEnableAbImmuneCalib,
                                                           double* dPeakFindWindow,
                                                           VARIANT* varAveragedTimes) override;
  HRESULT STDMETHODCALLTYPE calibrateTOFMassAxis(
      short* nAvgSpectra, VARIANT varExpectedMasses, VARIANT* varAveragedMeasuredTimes,
      VARIANT_BOOL* bSuppressAbImmuneCalib, VARIANT_BOOL* bOKtoFail,
      VARIANT_BOOL* bThisIsAManualCalibration, double* dTradWeighting, double* dPeakFindTimeWindow,
      IMassCalCoefficients** coefficients) override;

  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) override;

 private:
  // Runs a method unless one is running.
  template <class Body>
  HRESULT Run(const char* method, Body&& body) noexcept;

  void evtNewStatus(std::int32_t lStatus, const std::string& strMessage) override;

  ConnectionPoint events_;
  const char* running_ = nullptr;  // the method that runs now
  RegisteredInstrument instrument_;
  WindowsHost host_;
  TofCalibrator calibrator_;
};

}  // namespace tof::com
