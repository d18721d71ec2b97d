#include "instruments/standin/operation.h"

#include <array>

namespace tof::standin {
namespace {

struct Entry {
  Operation operation;
  std::string_view name;
};

constexpr std::array<Entry, kOperationCount> kEntries{{
    {Operation::kDataDictionaryInitialize, "DataDictionary.Initialize"},
    {Operation::kDataDictionaryGetSetpointTable, "DataDictionary.GetSetpointTable"},
    {Operation::kDataDictionaryGetConfigObject, "DataDictionary.GetConfigObject"},
    {Operation::kDataDictionaryGetFlagKey, "DataDictionary.GetFlagKey"},
    {Operation::kDataDictionaryGetTimeValue, "DataDictionary.GetTimeValue"},
    {Operation::kDataDictionaryGetAcqStartTime, "DataDictionary.GetAcqStartTime"},
    {Operation::kDataDictionaryGetAcqEndTime, "DataDictionary.GetAcqEndTime"},
    {Operation::kDataDictionaryGetStatusReader, "DataDictionary.GetStatusReader"},
    {Operation::kDataDictionaryGetModeName, "DataDictionary.GetModeName"},
    {Operation::kDataDictionaryModeUsesRfSetpoints, "DataDictionary.ModeUsesRfSetpoints"},
    {Operation::kAcqControllerInitializeController, "AcqController.InitializeController"},
    {Operation::kAcqControllerInitializeAcquisition, "AcqController.InitializeAcquisition"},
    {Operation::kAcqControllerPrepareSetpointAccess, "AcqController.PrepareSetpointAccess"},
    {Operation::kAcqControllerPrepareSetpointTable, "AcqController.PrepareSetpointTable"},
    {Operation::kAcqControllerIsAbortRequested, "AcqController.IsAbortRequested"},
    {Operation::kAcqControllerGetScaleFactor, "AcqController.GetScaleFactor"},
    {Operation::kAcqControllerGetCurrentMassCalObject, "AcqController.GetCurrentMassCalObject"},
    {Operation::kAcqControllerGetCurrentA, "AcqController.GetCurrentA"},
    {Operation::kAcqControllerGetDefaultCalibCoefficients,
     "AcqController.GetDefaultCalibCoefficients"},
    {Operation::kAcqControllerSetCalibCoefficients, "AcqController.SetCalibCoefficients"},
    {Operation::kAcqControllerSetLikelyAAndT0, "AcqController.SetLikelyAAndT0"},
    {Operation::kAcqControllerGetColumnStatistics, "AcqController.GetColumnStatistics"},
    {Operation::kAcqControllerEndAIC, "AcqController.EndAIC"},
    {Operation::kAcqControllerReadSetpoint, "AcqController.ReadSetpoint"},
    {Operation::kAcqControllerGetConfigurationName, "AcqController.GetConfigurationName"},
    {Operation::kAcqControllerGetCalibrantMasses, "AcqController.GetCalibrantMasses"},
    {Operation::kSetpointTableGetSetpoint, "SetpointTable.GetSetpoint"},
    {Operation::kSetpointTableSetSetpoint, "SetpointTable.SetSetpoint"},
    {Operation::kSetpointTableGetCurrentValue, "SetpointTable.GetCurrentValue"},
    {Operation::kSpecParserGetCalibrantPeakAttributes, "SpecParser.GetCalibrantPeakAttributes"},
    {Operation::kSpecParserGetPeakAttribute, "SpecParser.GetPeakAttribute"},
    {Operation::kSpecParserFindPeaks, "SpecParser.FindPeaks"},
    {Operation::kSpecParserShouldAvoidAIC, "SpecParser.ShouldAvoidAIC"},
    {Operation::kSpecParserSearchTargetAbundance, "SpecParser.SearchTargetAbundance"},
    {Operation::kTuneFlagsGetFlag, "TuneFlags.GetFlag"},
    {Operation::kCalibSettingsGetValue, "CalibSettings.GetValue"},
    {Operation::kCalibLogFilesOpenLogFile, "CalibLogFiles.OpenLogFile"},
    {Operation::kCalibLogFilesJoinAsCsvLine, "CalibLogFiles.JoinAsCsvLine"},
    {Operation::kInstrumentPathsGetBaseFolder, "InstrumentPaths.GetBaseFolder"},
    {Operation::kSpectrumDisplaySetDisplayUpdate, "SpectrumDisplay.SetDisplayUpdate"},
    {Operation::kStatusReaderRead, "StatusReader.Read"},
    {Operation::kFirmwareLibraryBinarySearchForTargetAb, "FirmwareLibrary.BinarySearchForTargetAb"},
    {Operation::kMassCalCoefficientsGetBinWidth, "MassCalCoefficients.GetBinWidth"},
    {Operation::kMassCalCoefficientsGetCoefficientRecord,
     "MassCalCoefficients.GetCoefficientRecord"},
    {Operation::kMassCalCoefficientsTimeToMass, "MassCalCoefficients.TimeToMass"},
    {Operation::kMassCalCoefficientsMassToTime, "MassCalCoefficients.MassToTime"},
    {Operation::kMassCalCoefficientsCalibrate, "MassCalCoefficients.Calibrate"},
    {Operation::kMassCalCoefficientsGetCalInfo, "MassCalCoefficients.GetCalInfo"},
    {Operation::kMassCalCoefficientsSetCalInfo, "MassCalCoefficients.SetCalInfo"},
}};

constexpr bool EntriesAreInOrder() {
  for (std::size_t i = 0; i < kEntries.size(); ++i) {
    if (static_cast<std::size_t>(kEntries[i].operation) != i) return false;
  }
  return true;
}
static_assert(EntriesAreInOrder());

}  // namespace

std::string_view NameOf(Operation operation) {
  return kEntries[static_cast<std::size_t>(operation)].name;
}

std::optional<Operation> OperationOfName(std::string_view name) {
  for (const Entry& entry : kEntries) {
    if (entry.name == name) return entry.operation;
  }
  return std::nullopt;
}

}  // namespace tof::standin
