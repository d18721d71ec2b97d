#include "component/aic/spectrum_showing.h"

#include "component/trace/guarded.h"

namespace tof {
namespace {

constexpr int kWaits = 6;
constexpr std::int32_t kWaitMs = 500;
constexpr std::int32_t kShowEvery = 5;

void WaitYielding(HostServices& host) {
  for (int i = 0; i < kWaits; ++i) {
    host.Sleep(kWaitMs);
    host.ProcessPendingMessages();
  }
}

void SetDisplayUpdate(Instrument& instrument, bool live) {
  Need(instrument.data_dictionary->GetConfigObject()).SetDisplayUpdate(live);
}

}  // namespace

void ShowSpectrum(Instrument& instrument, HostServices& host, const RfVoltage& rf,
                  AicLog& aic_log) {
  constexpr Routine kRoutine{.name = "ShowSpectrum", .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj&) {
    // Writing the present value makes the instrument refresh; the voltage does not change.
    rf.Write(ToDouble(rf.ReadCurrent()));
    WaitYielding(host);
    SetDisplayUpdate(instrument, true);
    WriteToAICLog(instrument, aic_log, "Unfreeze");
    WaitYielding(host);
    SetDisplayUpdate(instrument, false);
    WriteToAICLog(instrument, aic_log, "Freeze");
  });
}

void ShowSpectrumPeriodically(Instrument& instrument, HostServices& host, const RfVoltage& rf,
                              AicLog& aic_log, std::int32_t& counter) {
  if (!FlagIs(instrument, "ObfuscateCalibAlg", "2")) return;
  ++counter;
  if (counter % kShowEvery == 0) ShowSpectrum(instrument, host, rf, aic_log);
}

}  // namespace tof
