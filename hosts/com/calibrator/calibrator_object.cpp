#include "hosts/com/calibrator/calibrator_object.h"

#include <string>
#include <utility>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/variant_conversion.h"
#include "hosts/com/instrument_client/mass_time_objects.h"

namespace tof::com {
namespace {

constexpr const char* kSource = "vorntofcaliblib.TofCalibrator";
constexpr std::int32_t kCannotPerformNow = 17;
constexpr DISPID kNewStatusEvent = 1;

// An argument that the caller must pass.
template <class T>
T& Required(T* argument) {
  if (argument == nullptr) throw AutomationError(E_POINTER, "An argument is a null pointer");
  return *argument;
}

// One more than the calibrator counts is refused like any larger number, so that no memory is spent
// on a list of millions.
Variant MassesIn(const VARIANT& masses) {
  constexpr std::size_t kMostMasses = 32767;
  return FromVariant(masses, kMostMasses + 1);
}

bool IsTrue(const VARIANT_BOOL* flag) {
  return flag != nullptr && *flag != VARIANT_FALSE;
}

// The instrument's own object, for a caller that wants its dual interface.
IMassCalCoefficients* HandedBack(const std::shared_ptr<MassCalCoefficients>& coefficients) {
  IDispatch* object = ObjectOf(coefficients);
  if (object == nullptr) return nullptr;
  IMassCalCoefficients* dual = ComPtr<IDispatch>(object).As<IMassCalCoefficients>().Detach();
  if (dual == nullptr) {
    throw AutomationError(E_NOINTERFACE,
                          "Calibrated, but the instrument's coefficients object has no "
                          "IMassCalCoefficients to hand back");
  }
  return dual;
}

void RaiseEvent(IDispatch& sink, LONG status, const std::string& text) {
  BSTR message = NewBstr(text);
  const OwnedVariant by_position[] = {OwnedVariant::ByRef(message), OwnedVariant::ByRef(status)};
  VARIANT arguments[] = {by_position[0].get(), by_position[1].get()};
  DISPPARAMS parameters{};
  parameters.rgvarg = arguments;
  parameters.cArgs = 2;
  EXCEPINFO exception{};
  const HRESULT result = sink.Invoke(kNewStatusEvent, IID_NULL, LOCALE_USER_DEFAULT,
                                     DISPATCH_METHOD, &parameters, nullptr, &exception, nullptr);
  // What a sink says of itself is nobody's business here.
  if (result == DISP_E_EXCEPTION) TakeError(exception);
  SysFreeString(message);
}

}  // namespace

CalibratorObject::CalibratorObject()
    : events_(*this, __uuidof(__TofCalibrator)), calibrator_(instrument_, host_, *this) {}

template <class Body>
HRESULT CalibratorObject::Run(const char* method, Body&& body) noexcept {
  // The object outlives the call, whatever the caller's event handlers release.
  const ComPtr<_TofCalibrator> self(this);
  return Answer(kSource, [&] {
    if (running_ != nullptr) {
      throw AutomationError(kCannotPerformNow, std::string("Can't perform requested operation: ") +
                                                   method + " was called while " + running_ +
                                                   " runs");
    }
    const struct Running {
      const char*& slot;
      ~Running() { slot = nullptr; }
    } running{running_ = method};
    body();
  });
}

HRESULT CalibratorObject::QueryInterface(REFIID iid, void** object) {
  // The older half of IProvideClassInfo2.
  return DualObject::QueryInterface(
      iid == __uuidof(IProvideClassInfo) ? __uuidof(IProvideClassInfo2) : iid, object);
}

HRESULT CalibratorObject::WriteDataToSpotFireLog() {
  return Run("WriteDataToSpotFireLog", [&] { calibrator_.WriteDataToSpotFireLog(); });
}

HRESULT CalibratorObject::TestNewStuff() {
  return Run("TestNewStuff", [&] { calibrator_.TestNewStuff(); });
}

HRESULT CalibratorObject::GetAveragedTimesForCalibration(VARIANT varExpectedMasses,
                                                         short* nAvgSpectra,
                                                         VARIANT_BOOL* bEnableAbImmuneCalib,
                                                         double* dPeakFindWindow,
                                                         VARIANT* varAveragedTimes) {
  return Run("GetAveragedTimesForCalibration", [&] {
    VARIANT& result = Required(varAveragedTimes);
    VariantInit(&result);
    bool enable = IsTrue(&Required(bEnableAbImmuneCalib));
    double window = dPeakFindWindow == nullptr ? -1.0 : *dPeakFindWindow;
    const Variant times = calibrator_.GetAveragedTimesForCalibration(
        MassesIn(varExpectedMasses), Required(nAvgSpectra), enable, window);
    if (dPeakFindWindow != nullptr) *dPeakFindWindow = window;
    result = ToVariant(times).Detach();
  });
}

HRESULT CalibratorObject::calibrateTOFMassAxis(short* nAvgSpectra, VARIANT varExpectedMasses,
                                               VARIANT* varAveragedMeasuredTimes,
                                               VARIANT_BOOL* bSuppressAbImmuneCalib,
                                               VARIANT_BOOL* bOKtoFail,
                                               VARIANT_BOOL* bThisIsAManualCalibration,
                                               double* dTradWeighting, double* dPeakFindTimeWindow,
                                               IMassCalCoefficients** coefficients) {
  return Run("calibrateTOFMassAxis", [&] {
    Required(coefficients) = nullptr;
    VARIANT& averaged = Required(varAveragedMeasuredTimes);
    bool suppress = IsTrue(&Required(bSuppressAbImmuneCalib));
    OptionalCalibrationArguments optional;
    optional.bOKtoFail = IsTrue(bOKtoFail);
    optional.bThisIsAManualCalibration = IsTrue(bThisIsAManualCalibration);
    if (dTradWeighting != nullptr) optional.dTradWeighting = *dTradWeighting;
    if (dPeakFindTimeWindow != nullptr) optional.dPeakFindTimeWindow = *dPeakFindTimeWindow;

    Variant times = FromVariant(averaged);
    const auto fitted = calibrator_.calibrateTOFMassAxis(
        Required(nAvgSpectra), MassesIn(varExpectedMasses), times, suppress, optional);

    if (dPeakFindTimeWindow != nullptr) *dPeakFindTimeWindow = optional.dPeakFindTimeWindow;
    StoreInto(averaged, ToVariant(times));
    *coefficients = HandedBack(fitted);
  });
}

void CalibratorObject::evtNewStatus(std::int32_t lStatus, const std::string& strMessage) {
  for (const ComPtr<IDispatch>& sink : events_.Sinks()) {
    RaiseEvent(*sink.get(), lStatus, strMessage);
  }
}

HRESULT CalibratorObject::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (points == nullptr) return E_POINTER;
  *points = nullptr;
  return Answer(kSource, [&] { *points = EnumerateOnly(&events_).Detach(); });
}

HRESULT CalibratorObject::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  if (iid != events_.Events()) return CONNECT_E_NOCONNECTION;
  *point = ComPtr<IConnectionPoint>(&events_).Detach();
  return S_OK;
}

HRESULT CalibratorObject::GetClassInfo(ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return Answer(kSource, [&] { *info = EmbeddedTypeInfo(__uuidof(::TofCalibrator)).Detach(); });
}

HRESULT CalibratorObject::GetGUID(DWORD kind, GUID* guid) {
  if (guid == nullptr) return E_POINTER;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) {
    *guid = GUID_NULL;
    return E_INVALIDARG;
  }
  *guid = events_.Events();
  return S_OK;
}

}  // namespace tof::com
