// The functions of vorntofDirectFWComm.dll, on the stand-in instrument of this process: that of the
// classes which vorninstrument.dll registers.

#include "hosts/com/automation/windows_headers.h"

// The identities are defined in this file.
#include <initguid.h>

#include <vorninstrument.h>
#include <vorninstrumentcontrol.h>

#include "hosts/com/automation/com_ptr.h"
#include "hosts/com/idl/vorntof_direct_fw_comm.h"

namespace {

using tof::com::ComPtr;

constexpr int kDone = 0;
constexpr int kRefused = -1;
constexpr LONG kAs32BitInteger = VT_I4;

// None when the class is not registered or the instrument is in use on another thread.
template <class Interface>
ComPtr<Interface> Created(REFCLSID class_id) {
  void* object = nullptr;
  if (FAILED(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                              &object))) {
    return {};
  }
  return ComPtr<Interface>::Adopt(static_cast<Interface*>(object));
}

}  // namespace

// Sets a setpoint to a whole number: 0, or -1 when the instrument refuses.
int VORNTOF_CALL SetSetpointValue(int id, int value) {
  const auto dictionary = Created<IDataDictionary>(__uuidof(DataDictionary));
  ComPtr<ISetpointTable> table;
  if (!dictionary || FAILED(dictionary->GetSetpointTable(table.Out()))) return kRefused;
  VARIANT number;
  VariantInit(&number);
  V_VT(&number) = VT_I4;
  V_I4(&number) = value;
  return SUCCEEDED(table->SetSetpoint(id, kAs32BitInteger, number)) ? kDone : kRefused;
}

// The argument: a caller sees that the library answers.
int VORNTOF_CALL ReturnInt1(int value) {
  return value;
}

// Electrode and polarity are taken as they come: there is one voltage to move, of ions of one sign.
// Without an instrument the lowest voltage of the search.
float VORNTOF_CALL BinarySearchForTargetAb(int, float target_min_abundance,
                                           float target_max_abundance, float speed_up_factor,
                                           float precision_volts, float low_volts, float high_volts,
                                           int, float window_start_ns, float window_end_ns) {
  const auto control = Created<IInstrumentControl>(__uuidof(InstrumentControl));
  float volts = low_volts;
  if (control) {
    control->SearchTargetAbundance(target_min_abundance, target_max_abundance, speed_up_factor,
                                   precision_volts, low_volts, high_volts, window_start_ns,
                                   window_end_ns, &volts);
  }
  return volts;
}
