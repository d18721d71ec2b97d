#include "component/acquisition/instrument_state.h"

#include "component/calibration/driver.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"
#include "tests/support/fault_sweep.h"

namespace tof {
namespace {

using fakes::Calls;
using fakes::InOrder;
using fakes::SetpointRead;
using fakes::SetpointWritten;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr ValueType kInt16 = ValueType::kInt16;
constexpr ValueType kBoolean = ValueType::kBoolean;

class InstrumentState : public fakes::CalibrationFixture {
 protected:
  // The calls without those to the trace.
  Calls Asked() const {
    Calls asked;
    for (const std::string& call : journal.entries()) {
      if (call.rfind("Trace.", 0) != 0) asked.push_back(call);
    }
    return asked;
  }
  std::int16_t Int16Setpoint(std::int32_t id) const {
    return *instrument.setpoints.at(id).As<std::int16_t>();
  }

  Instrument parts = Collaborators();
  SavedInstrumentState saved;
};

class StoringTheState : public InstrumentState {};

TEST_F(StoringTheState, ReadsTheFourSetpointsInTheirOrderAndTracesThree) {
  instrument.setpoints[18] = std::int16_t{2};
  instrument.setpoints[149] = std::int16_t{3};
  StorePreAutotuneInstrumentState(parts, saved);
  EXPECT_THAT(Asked(), ElementsAreArray(InOrder({SetpointRead(128), SetpointRead(18),
                                                 SetpointRead(150), SetpointRead(149)})));
  EXPECT_THAT(host.trace->lines,
              ElementsAre("Entry StorePreAutotuneInstrumentState 9",
                          "StorePreAutotuneInstrumentState 9: Storing Instrument state "
                          "[SampleRate, HighResEnabled, GainChannelSelect] = [2, True, 3]",
                          "Exit StorePreAutotuneInstrumentState 9"));
  EXPECT_EQ(saved.setpoint128, 11);
  EXPECT_EQ(saved.sample_rate, 2);
  EXPECT_TRUE(saved.high_res_enabled);
  EXPECT_EQ(saved.gain_channel_select, 3);
}

TEST_F(StoringTheState, RoundsNumbersToSixteenBitsAndTakesEveryNumberButZeroForTrue) {
  instrument.setpoints[128] = 2.5;
  instrument.setpoints[18] = 3.5;
  instrument.setpoints[150] = std::int32_t{7};
  instrument.setpoints[149] = "-4";
  StorePreAutotuneInstrumentState(parts, saved);
  EXPECT_EQ(saved.setpoint128, 2);
  EXPECT_EQ(saved.sample_rate, 4);
  EXPECT_TRUE(saved.high_res_enabled);
  EXPECT_EQ(saved.gain_channel_select, -4);
}

TEST_F(StoringTheState, EndsAtASetpointThatDoesNotFitAndKeepsTheOlderValuesBehindIt) {
  saved = {.high_res_enabled = true, .gain_channel_select = 9, .sample_rate = 8, .setpoint128 = 7};
  instrument.setpoints[18] = std::int32_t{40000};
  instrument.setpoints[150] = false;
  StorePreAutotuneInstrumentState(parts, saved);
  EXPECT_EQ(saved.setpoint128, 11);
  EXPECT_EQ(saved.sample_rate, 8);
  EXPECT_TRUE(saved.high_res_enabled);
  EXPECT_EQ(saved.gain_channel_select, 9);
  EXPECT_THAT(host.trace->Texts(),
              ElementsAre("error[6] in StorePreAutotuneInstrumentState(): Overflow"));
}

TEST_F(StoringTheState, TracesAndSwallowsEveryFailureOfACollaborator) {
  fakes::FailEachCall(
      journal, [&] { host.trace->Forget(); },
      [&] { EXPECT_NO_THROW(StorePreAutotuneInstrumentState(parts, saved)); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_THAT(
            host.trace->Texts(),
            ElementsAre("error[4711] in StorePreAutotuneInstrumentState(): Injected fault"));
      });
}

class RestoringTheState : public InstrumentState {
 protected:
  RestoringTheState() {
    saved = {
        .high_res_enabled = true, .gain_channel_select = 3, .sample_rate = 2, .setpoint128 = 5};
  }
  void Restore(bool recalibrate = false) {
    RestorePreAutotuneInstrumentState(parts, saved, recalibrate, expected_masses, measured_times,
                                      [&](const Variant& m, std::int16_t n) {
                                        journal.Enter("Recalibrate(" + std::to_string(n) + ")");
                                        recalibrated_masses = m;
                                      });
  }

  const Calls writes_ =
      InOrder({SetpointWritten(18, kInt16, "2"), SetpointWritten(150, kBoolean, "True"),
               SetpointWritten(149, kInt16, "3"), SetpointWritten(128, kInt16, "5")});
  Variant expected_masses;
  MeasuredTimes measured_times;
  Variant recalibrated_masses;
};

TEST_F(RestoringTheState, TracesAndWritesTheFourSetpointsInTheirOrder) {
  Restore();
  EXPECT_THAT(journal.entries(),
              ElementsAreArray(InOrder(
                  {{"Trace.Entry(RestorePreAutotuneInstrumentState,9)",
                    "Trace.TracePrint(Restoring Instrument state [SampleRate, HighResEnabled, "
                    "GainChannelSelect] = [, 2, True, 3],RestorePreAutotuneInstrumentState,9)"},
                   writes_,
                   {"Trace.Exit(RestorePreAutotuneInstrumentState,9)"}})));
}

TEST_F(RestoringTheState, KeepsTheSavedValuesForTheNextRestore) {
  Restore();
  journal.Clear();
  Restore();
  EXPECT_THAT(Asked(), ElementsAreArray(writes_));
}

TEST_F(RestoringTheState, WritesZerosWithoutAnEarlierStore) {
  saved = {};
  Restore();
  EXPECT_THAT(Asked(),
              ElementsAreArray(InOrder(
                  {SetpointWritten(18, kInt16, "0"), SetpointWritten(150, kBoolean, "False"),
                   SetpointWritten(149, kInt16, "0"), SetpointWritten(128, kInt16, "0")})));
  EXPECT_EQ(host.trace->Texts().front(),
            "Restoring Instrument state [SampleRate, HighResEnabled, GainChannelSelect] = "
            "[, 0, False, 0]");
}

TEST_F(RestoringTheState, LeavesWhatItHadWrittenBeforeAFailure) {
  journal.fail_operation = "SetpointTable.SetSetpoint(149";
  Restore();
  EXPECT_EQ(Int16Setpoint(18), 2);
  EXPECT_EQ(Int16Setpoint(149), 1);
  EXPECT_EQ(Int16Setpoint(128), 11);
  EXPECT_EQ(host.trace->Texts().back(),
            "error[4711] in RestorePreAutotuneInstrumentState(): Injected fault");
}

TEST_F(RestoringTheState, TracesAndSwallowsEveryFailureOfACollaborator) {
  fakes::FailEachCall(
      journal, [&] { host.trace->Forget(); }, [&] { EXPECT_NO_THROW(Restore(true)); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(host.trace->Texts().back(),
                  "error[4711] in RestorePreAutotuneInstrumentState(): Injected fault");
      });
}

TEST_F(RestoringTheState, RecalibratesTheStoredMassesWithAsManySpectraAsWereMeasured) {
  expected_masses = Variant::DoubleArray({100.0, 200.0});
  measured_times.ReDim({0, 6}, {0, 1});
  Restore(true);
  EXPECT_THAT(Asked(), ElementsAreArray(InOrder({writes_, {"Recalibrate(7)"}})));
  EXPECT_EQ(recalibrated_masses, expected_masses);
}

TEST_F(RestoringTheState, RecalibratesTheInstrumentsOwnMassesWithOneSpectrumWhenNothingIsStored) {
  Restore(true);
  EXPECT_THAT(Asked(),
              ElementsAreArray(InOrder(
                  {writes_,
                   SetpointRead(117),
                   {"DataDictionary.GetModeName", "AcqController.GetConfigurationName",
                    "AcqController.GetCalibrantMasses(3,MS,Standard)", "Recalibrate(1)"}})));
  EXPECT_EQ(recalibrated_masses, Variant(Variant::DoubleArray(instrument.sample_masses)));
}

TEST_F(RestoringTheState, RoundsSetpoint117ForTheChoiceOfTheMasses) {
  instrument.setpoints[117] = 4.5;
  Restore(true);
  EXPECT_THAT(Asked(), ::testing::Contains("AcqController.GetCalibrantMasses(4,MS,Standard)"));
}

TEST_F(RestoringTheState, RunsAWholeCalibrationOfTheSameObject) {
  CalibrationState state;
  RestoreInstrumentState(parts, host, state, events, true);
  EXPECT_THAT(events.events, IsEmpty());
  EXPECT_EQ(state.data.expected_masses, masses);
  EXPECT_EQ(state.data.measured_times.UBound(1), 0);
  EXPECT_NEAR(instrument.in_force->record[0], instrument.true_a_per_ns, 1e-12);
  EXPECT_EQ(instrument.spectra_taken, 2);  // one that is not stored, one that is
  const auto calls = Asked();
  EXPECT_EQ(Calls(calls.begin(), calls.begin() + 4), SetpointWritten(18, kInt16, "0"));
  EXPECT_EQ(state.instrument_state.sample_rate, 0) << "the inner run stores the state anew";
}

TEST_F(RestoringTheState, TakesTheSettingsAndNoManualRunForItsCalibration) {
  CalibrationState state;
  instrument.flags["SkipTOFCalibrationDuringAutotunes"] = "Yes";
  RestoreInstrumentState(parts, host, state, events, true);
  EXPECT_EQ(instrument.spectra_taken, 0);

  instrument.flags.erase("SkipTOFCalibrationDuringAutotunes");
  RestoreInstrumentState(parts, host, state, events, true);
  EXPECT_THAT(host.trace->Texts(), ::testing::Contains("dPeakFindTimeWindow = 0.5"));
  EXPECT_THAT(host.trace->Texts(), ::testing::Contains("calInfo.PolyTermPowerUseFlag = 0"));
}

class EnsuringTheState : public InstrumentState {};

TEST_F(EnsuringTheState, OnlyAnnouncesItselfWhenItIsToBeSkipped) {
  instrument.setpoints[18] = std::int16_t{2};
  instrument.setpoints[149] = std::int16_t{3};
  EnsureProperInstrumentStateForCalibration(parts, true);
  EXPECT_THAT(journal.entries(),
              ElementsAre("Trace.Entry(EnsureProperInstrumentStateForCalibration,9)",
                          "Trace.Exit(EnsureProperInstrumentStateForCalibration,9)"));
}

TEST_F(EnsuringTheState, ChangesGainChannel3AtSampleRate2To1) {
  instrument.setpoints[18] = std::int16_t{2};
  instrument.setpoints[149] = std::int16_t{3};
  EnsureProperInstrumentStateForCalibration(parts, false);
  EXPECT_THAT(Asked(), ElementsAreArray(InOrder({SetpointRead(18), SetpointRead(149),
                                                 SetpointWritten(149, kInt16, "1")})));
  EXPECT_EQ(Int16Setpoint(149), 1);
}

TEST_F(EnsuringTheState, LeavesEveryOtherCombinationAlone) {
  struct Row {
    Variant sample_rate;
    Variant gain_channel;
    bool changed;
  };
  for (const Row& row :
       {Row{std::int16_t{2}, std::int16_t{3}, true}, Row{2.0, std::int32_t{3}, true},
        Row{"2", "3", true}, Row{std::int16_t{2}, std::int16_t{2}, false},
        Row{std::int16_t{2}, std::int16_t{4}, false}, Row{std::int16_t{1}, std::int16_t{3}, false},
        Row{std::int16_t{3}, std::int16_t{2}, false}, Row{2.4, std::int16_t{3}, false},
        Row{Variant(), Variant(), false}}) {
    instrument.setpoints[18] = row.sample_rate;
    instrument.setpoints[149] = row.gain_channel;
    EnsureProperInstrumentStateForCalibration(parts, false);
    EXPECT_EQ(instrument.setpoints.at(149),
              row.changed ? Variant(std::int16_t{1}) : row.gain_channel)
        << ToText(row.sample_rate) << " and " << ToText(row.gain_channel);
    EXPECT_EQ(instrument.setpoints.at(18), row.sample_rate);
  }
}

TEST_F(EnsuringTheState, ComparesTheGainChannelAtEverySampleRate) {
  for (const std::int16_t sample_rate : {std::int16_t{1}, std::int16_t{2}}) {
    host.trace->Forget();
    instrument.setpoints[18] = sample_rate;
    instrument.setpoints[149] = Variant("high");
    EnsureProperInstrumentStateForCalibration(parts, false);
    EXPECT_THAT(host.trace->Texts(),
                ElementsAre("error[13] in EnsureProperInstrumentStateForCalibration(): "
                            "Type mismatch"))
        << sample_rate;
  }
}

TEST_F(EnsuringTheState, TracesAndSwallowsEveryFailureOfACollaborator) {
  fakes::FailEachCall(
      journal,
      [&] {
        host.trace->Forget();
        instrument.setpoints[18] = std::int16_t{2};
        instrument.setpoints[149] = std::int16_t{3};
      },
      [&] { EXPECT_NO_THROW(EnsureProperInstrumentStateForCalibration(parts, false)); },
      [&](const std::string& failed) {
        if (failed.rfind("Trace.Exit", 0) == 0) return;
        EXPECT_EQ(Int16Setpoint(149), 3);
        EXPECT_THAT(host.trace->Texts(),
                    ElementsAre("error[4711] in EnsureProperInstrumentStateForCalibration(): "
                                "Injected fault"));
      });
}

TEST_F(EnsuringTheState, IsUndoneByTheRestoreAlone) {
  instrument.setpoints[18] = std::int16_t{2};
  instrument.setpoints[149] = std::int16_t{3};
  StorePreAutotuneInstrumentState(parts, saved);
  EnsureProperInstrumentStateForCalibration(parts, false);
  EnsureProperInstrumentStateForCalibration(parts, false);
  EXPECT_EQ(Int16Setpoint(149), 1);
  RestorePreAutotuneInstrumentState(parts, saved, false, {}, {}, {});
  EXPECT_EQ(Int16Setpoint(149), 3);
}

}  // namespace
}  // namespace tof
