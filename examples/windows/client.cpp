// A host program in C++: calibrates the mass axis of the stand-in instrument and hears of a
// failure. It needs COM alone, and the headers that are made from the interfaces' IDL.
//
// usage: client [abort]
//   abort: the user asks for an abort as soon as the calibration begins
#include <windows.h>
// After windows.h.
#include <ocidl.h>
#include <ole2.h>
// The identities of the headers behind it are defined here.
#include <initguid.h>

#include <vorninstrumentcontrol.h>
#include <vornmasstime.h>
#include <vorntofcaliblib.h>

#include <cstdio>
#include <cwchar>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// The event's interface has no functions of its own: calls come by number.
constexpr DISPID kEvtNewStatus = 1;

// Throws what the failed call has to say.
void Check(HRESULT result) {
  if (SUCCEEDED(result)) return;
  std::string text = "HRESULT " + std::to_string(static_cast<unsigned long>(result));
  IErrorInfo* information = nullptr;
  if (GetErrorInfo(0, &information) == S_OK) {
    BSTR description = nullptr;
    information->GetDescription(&description);
    for (const wchar_t* c = description; c != nullptr && *c != 0; ++c) {
      text += *c < 128 ? static_cast<char>(*c) : '?';
    }
    SysFreeString(description);
    information->Release();
  }
  throw std::runtime_error(text);
}

// One reference to an object.
template <class Interface>
class Reference {
 public:
  Reference() = default;
  ~Reference() {
    if (object_ != nullptr) object_->Release();
  }
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;

  Interface* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  Interface* Get() const { return object_; }
  Interface** Out() { return &object_; }
  void** OutVoid() { return reinterpret_cast<void**>(&object_); }

 private:
  Interface* object_ = nullptr;
};

template <class Interface>
void Create(const wchar_t* prog_id, REFIID iid, Reference<Interface>& object) {
  CLSID class_id;
  Check(CLSIDFromProgID(prog_id, &class_id));
  Check(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, iid, object.OutVoid()));
}

// A text for one call.
class Text {
 public:
  explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
  ~Text() { SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  operator BSTR() const { return text_; }

 private:
  BSTR text_;
};

// Receives the calibrator's event. It belongs to main and outlives the connection, so that counting
// its references has no purpose.
class StatusSink : public IDispatch {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
                       IsEqualIID(iid, DIID___TofCalibrator);
    *object = known ? static_cast<IDispatch*>(this) : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

  // The arguments lie in reverse order, both by reference.
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                      EXCEPINFO*, UINT*) override {
    if (member != kEvtNewStatus) return DISP_E_MEMBERNOTFOUND;
    if (parameters->cArgs != 2) return DISP_E_BADPARAMCOUNT;
    const VARIANT& number = parameters->rgvarg[1];
    const VARIANT& message = parameters->rgvarg[0];
    if (V_VT(&number) != (VT_I4 | VT_BYREF) || V_VT(&message) != (VT_BSTR | VT_BYREF)) {
      return DISP_E_TYPEMISMATCH;
    }
    std::printf("event: [%ld] %ls\n", *V_I4REF(&number), *V_BSTRREF(&message));
    return S_OK;
  }
};

// The sink's connection to a calibrator.
class Connection {
 public:
  Connection(IUnknown* calibrator, IDispatch* sink) {
    Reference<IConnectionPointContainer> container;
    Check(calibrator->QueryInterface(IID_IConnectionPointContainer, container.OutVoid()));
    Check(container->FindConnectionPoint(DIID___TofCalibrator, point_.Out()));
    Check(point_->Advise(sink, &cookie_));
  }
  ~Connection() { point_->Unadvise(cookie_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

 private:
  Reference<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};

// An array of doubles, indexed from 1 as some languages do; the caller clears it.
VARIANT ArrayFromOne(const std::vector<double>& numbers) {
  VARIANT array;
  VariantInit(&array);
  V_ARRAY(&array) = SafeArrayCreateVector(VT_R8, 1, static_cast<ULONG>(numbers.size()));
  if (V_ARRAY(&array) == nullptr) throw std::bad_alloc();
  V_VT(&array) = VT_ARRAY | VT_R8;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    LONG index = static_cast<LONG>(i) + 1;
    double number = numbers[i];
    Check(SafeArrayPutElement(V_ARRAY(&array), &index, &number));
  }
  return array;
}

std::vector<double> NumbersIn(const VARIANT& array) {
  if (V_VT(&array) != (VT_ARRAY | VT_R8)) throw std::runtime_error("not an array of doubles");
  LONG lower = 0;
  LONG upper = -1;
  Check(SafeArrayGetLBound(V_ARRAY(&array), 1, &lower));
  Check(SafeArrayGetUBound(V_ARRAY(&array), 1, &upper));
  std::vector<double> numbers;
  for (LONG i = lower; i <= upper; ++i) {
    double number = 0.0;
    Check(SafeArrayGetElement(V_ARRAY(&array), &i, &number));
    numbers.push_back(number);
  }
  return numbers;
}

void PrintResult(const std::vector<double>& masses, const std::vector<double>& times_ns,
                 IMassCalCoefficients* coefficients) {
  std::printf("m/z\ttime, ns\terror, ppm\n");
  for (std::size_t i = 0; i < masses.size(); ++i) {
    double mass = 0.0;
    Check(coefficients->TimeToMass(times_ns.at(i), &mass));
    std::printf("%.6f\t%.4f\t%.3f\n", masses[i], times_ns[i], (mass - masses[i]) / masses[i] * 1e6);
  }
  VARIANT record;
  VariantInit(&record);
  Check(coefficients->GetCoefficientRecord(&record));
  const std::vector<double> values = NumbersIn(record);
  VariantClear(&record);
  std::printf("A = %.12g per ns, t0 = %.9g ns\n", values.at(0), values.at(1));
}

int Calibrate(bool abort) {
  Reference<IInstrumentControl> control;
  Create(L"vorninstrument.InstrumentControl", IID_IInstrumentControl, control);
  // The calibrator's waits for voltages would be real.
  Check(control->OverrideSetting(Text(L"Calibration/AICSettlingTime_sec=0")));
  wchar_t folder[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, folder);
  Check(control->put_BaseFolder(Text(folder)));
  if (abort) Check(control->RequestAbort());

  Reference<_TofCalibrator> calibrator;
  Create(L"vorntofcaliblib.TofCalibrator", IID__TofCalibrator, calibrator);
  StatusSink sink;
  const Connection connection(calibrator.Get(), &sink);

  const std::vector<double> masses = {226.951491, 362.926338, 498.901186, 702.863456, 906.825727};
  short spectra = 10;
  VARIANT_BOOL suppress_aic = VARIANT_TRUE;
  VARIANT_BOOL ok_to_fail = VARIANT_FALSE;
  VARIANT_BOOL manual = VARIANT_FALSE;
  double weighting = -1.0;
  double peak_window = -1.0;
  VARIANT expected = ArrayFromOne(masses);
  VARIANT times;
  VariantInit(&times);
  Reference<IMassCalCoefficients> coefficients;
  const HRESULT result =
      calibrator->calibrateTOFMassAxis(&spectra, expected, &times, &suppress_aic, &ok_to_fail,
                                       &manual, &weighting, &peak_window, coefficients.Out());
  VariantClear(&expected);
  Check(result);
  if (!coefficients) {
    VariantClear(&times);
    std::printf("no coefficients\n");
    return 1;
  }
  const std::vector<double> times_ns = NumbersIn(times);
  VariantClear(&times);
  PrintResult(masses, times_ns, coefficients.Get());
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int exit_code = 2;
  try {
    exit_code = Calibrate(argc > 1 && std::wcscmp(argv[1], L"abort") == 0);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "client: %s\n", error.what());
  }
  CoUninitialize();
  return exit_code;
}
