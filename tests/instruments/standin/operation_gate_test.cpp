#include "instruments/standin/operation_gate.h"

#include <gtest/gtest.h>

#include "component/automation/error.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

// Which of the first five calls fail, as a text of '.' and 'x'.
std::string Outcomes(OperationGate& gate, Operation operation) {
  std::string outcomes;
  for (int i = 0; i < 5; ++i) {
    try {
      gate.Enter(operation);
      outcomes += '.';
    } catch (const AutomationError&) {
      outcomes += 'x';
    }
  }
  return outcomes;
}

TEST(Operation, IsKnownByCollaboratorAndName) {
  EXPECT_EQ(NameOf(Operation::kSpecParserFindPeaks), "SpecParser.FindPeaks");
  EXPECT_EQ(OperationOfName("MassCalCoefficients.Calibrate"),
            Operation::kMassCalCoefficientsCalibrate);
  EXPECT_EQ(OperationOfName("FindPeaks"), std::nullopt);
  EXPECT_EQ(OperationOfName(""), std::nullopt);
}

TEST(OperationGate, FailsOneCallOrAllFromItOn) {
  OperationGate once({{Operation::kSpecParserFindPeaks, 3, false}});
  EXPECT_EQ(Outcomes(once, Operation::kSpecParserFindPeaks), "..x..");
  OperationGate for_ever({{Operation::kSpecParserFindPeaks, 3, true}});
  EXPECT_EQ(Outcomes(for_ever, Operation::kSpecParserFindPeaks), "..xxx");
}

TEST(OperationGate, LeavesOtherOperationsAlone) {
  OperationGate gate({{Operation::kSpecParserFindPeaks, 1, true}});
  EXPECT_EQ(Outcomes(gate, Operation::kTuneFlagsGetFlag), ".....");
}

TEST(OperationGate, NamesTheOperationInItsError) {
  OperationGate gate({{Operation::kTuneFlagsGetFlag, 2, false}});
  gate.Enter(Operation::kTuneFlagsGetFlag);
  try {
    gate.Enter(Operation::kTuneFlagsGetFlag);
    FAIL() << "the second call did not fail";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.number(), 440);
    EXPECT_EQ(error.description(), "Planned failure of TuneFlags.GetFlag, call 2");
  }
}

TEST(OperationGate, CountsCallsThatFailToo) {
  OperationGate gate({{Operation::kTuneFlagsGetFlag, 1, true}});
  Outcomes(gate, Operation::kTuneFlagsGetFlag);
  EXPECT_EQ(gate.Calls(Operation::kTuneFlagsGetFlag), 5);
  EXPECT_EQ(gate.Calls(Operation::kSpecParserFindPeaks), 0);
}

// A fault planned for an operation that doesn't enter the gate would never be met.
TEST(StandInInstrument, LetsEveryOperationPassTheGate) {
  TestInstrument test;
  StandInInstrument& instrument = test.instrument;
  const auto ignore_errors = [](auto&& call) {
    try {
      call();
    } catch (const AutomationError&) {
    }
  };
  const auto dictionary = instrument.CreateDataDictionary();
  dictionary->Initialize();
  dictionary->GetConfigObject()->SetDisplayUpdate(false);
  dictionary->GetFlagKey();
  dictionary->GetTimeValue();
  dictionary->GetAcqStartTime();
  dictionary->GetAcqEndTime();
  dictionary->GetStatusReader()->Read("ACTUAL.NDR[NRDYSTATE]", "VARIANT", 0);
  dictionary->ModeUsesRfSetpoints(dictionary->GetModeName());
  const auto table = dictionary->GetSetpointTable();
  table->GetSetpoint(149);
  table->SetSetpoint(149, ValueType::kInt16, Variant(std::int16_t{1}));
  table->GetCurrentValue(149);

  const auto controller = instrument.CreateAcqController();
  controller->InitializeController(0);
  controller->InitializeAcquisition(0);
  controller->PrepareSetpointAccess();
  controller->PrepareSetpointTable();
  controller->IsAbortRequested();
  controller->GetScaleFactor();
  controller->GetCurrentA();
  controller->GetDefaultCalibCoefficients();
  controller->SetLikelyAAndT0(0.65, 0.3);
  controller->SetCalibCoefficients(controller->GetCurrentMassCalObject());
  controller->GetColumnStatistics(BoundedArray2D<double>({0, 0}, {0, 0}));
  controller->EndAIC();
  controller->ReadSetpoint(149);
  controller->GetCalibrantMasses(0, "", controller->GetConfigurationName());

  const auto parser = instrument.CreateSpecParser();
  const Variant masses(BoundedArray<double>{498.901186});
  double window = 10.0;
  std::int32_t count = 0;
  std::shared_ptr<PeakList> list;
  parser->GetCalibrantPeakAttributes(masses, 0.1);
  parser->GetPeakAttribute(PeakCalculationtype::abund, 498.9, 0.1);
  parser->FindPeaks(12e3, 72e3, 5, count, list);
  parser->ShouldAvoidAIC(masses, window);
  ignore_errors([&] { parser->SearchTargetAbundance(498.9, 0.1); });

  instrument.CreateTuneFlags()->GetFlag("AICLoggingEnabled", -1);
  instrument.CreateCalibSettings()->GetValue("Calibration", "AIC_RF_Step", 0, window);
  const auto logs = instrument.CreateCalibLogFiles();
  logs->OpenLogFile("AIC", "header", "TXT");
  logs->JoinAsCsvLine({});
  instrument.GetInstrumentPaths()->GetBaseFolder();
  ignore_errors([&] {
    instrument.GetFirmwareLibrary()->BinarySearchForTargetAb(0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
  });

  const auto coefficients = instrument.CreateMassCalCoefficients();
  coefficients->GetBinWidth();
  coefficients->TimeToMass(1.0);
  coefficients->MassToTime(1.0);
  ignore_errors([&] { coefficients->Calibrate({}, {}); });
  coefficients->SetCalInfo(coefficients->GetCalInfo());

  for (std::size_t i = 0; i < kOperationCount; ++i) {
    const auto operation = static_cast<Operation>(i);
    EXPECT_GT(instrument.State().gate.Calls(operation), 0) << NameOf(operation);
  }
}

}  // namespace
}  // namespace tof::standin
