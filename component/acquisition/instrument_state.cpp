#include "component/acquisition/instrument_state.h"

#include "component/automation/convert.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

std::int16_t ReadInt16(Instrument& instrument, std::int32_t id) {
  return ToInt16(ReadSetpoint(instrument, id));
}

void WriteInt16(Instrument& instrument, std::int32_t id, std::int16_t value) {
  WriteSetpoint(instrument, id, ValueType::kInt16, Variant(value));
}

void Recalibrate(Instrument& instrument, const Variant& expected_masses,
                 const MeasuredTimes& measured_times, const Recalibration& recalibrate) {
  const Variant masses =
      expected_masses.IsEmpty() ? Variant(InstrumentCalibrantMasses(instrument)) : expected_masses;
  const std::int16_t n_spectra =
      measured_times.IsDimensioned() ? ToInt16(measured_times.UBound(1) + 1.0) : std::int16_t{1};
  recalibrate(masses, n_spectra);
}

}  // namespace

void StorePreAutotuneInstrumentState(Instrument& instrument, SavedInstrumentState& saved) {
  constexpr Routine kRoutine{.name = "StorePreAutotuneInstrumentState",
                             .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj& trace) {
    saved.setpoint128 = ReadInt16(instrument, setpoint::k128);
    saved.sample_rate = ReadInt16(instrument, setpoint::kSampleRate);
    saved.high_res_enabled = ToBool(ReadSetpoint(instrument, setpoint::kHighResEnabled));
    saved.gain_channel_select = ReadInt16(instrument, setpoint::kGainChannelSelect);
    trace.TracePrint("Storing Instrument state [SampleRate, HighResEnabled, GainChannelSelect] = [",
                     saved.sample_rate, ", ", saved.high_res_enabled, ", ",
                     saved.gain_channel_select, "]");
  });
}

void RestorePreAutotuneInstrumentState(Instrument& instrument, const SavedInstrumentState& saved,
                                       bool bRecalibrate, const Variant& expected_masses,
                                       const MeasuredTimes& measured_times,
                                       const Recalibration& recalibrate) {
  constexpr Routine kRoutine{.name = "RestorePreAutotuneInstrumentState",
                             .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj& trace) {
    // The separator right behind the bracket, which the store line does not have, is deliberate.
    trace.TracePrint(
        "Restoring Instrument state [SampleRate, HighResEnabled, GainChannelSelect] = [", ", ",
        saved.sample_rate, ", ", saved.high_res_enabled, ", ", saved.gain_channel_select, "]");
    WriteInt16(instrument, setpoint::kSampleRate, saved.sample_rate);
    WriteSetpoint(instrument, setpoint::kHighResEnabled, ValueType::kBoolean,
                  Variant(saved.high_res_enabled));
    WriteInt16(instrument, setpoint::kGainChannelSelect, saved.gain_channel_select);
    // Read first by the store and written last here, deliberately.
    WriteInt16(instrument, setpoint::k128, saved.setpoint128);
    if (bRecalibrate) Recalibrate(instrument, expected_masses, measured_times, recalibrate);
  });
}

void EnsureProperInstrumentStateForCalibration(Instrument& instrument, bool bSkip) {
  constexpr Routine kRoutine{.name = "EnsureProperInstrumentStateForCalibration",
                             .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj&) {
    if (bSkip) return;
    const Variant sample_rate = ReadSetpoint(instrument, setpoint::kSampleRate);
    const Variant gain_channel = ReadSetpoint(instrument, setpoint::kGainChannelSelect);
    // Both are compared, whatever the first says: a gain channel that is no number is an error at
    // every sample rate.
    const bool at_rate = EqualsNumber(sample_rate, 2);
    const bool in_channel = EqualsNumber(gain_channel, 3);
    if (at_rate && in_channel) {
      WriteInt16(instrument, setpoint::kGainChannelSelect, 1);
    }
  });
}

}  // namespace tof
