// The operations of the instrument's collaborators, by name.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace tof::standin {

enum class Operation : std::size_t {
  kDataDictionaryInitialize,
  kDataDictionaryGetSetpointTable,
  kDataDictionaryGetConfigObject,
  kDataDictionaryGetFlagKey,
  kDataDictionaryGetTimeValue,
  kDataDictionaryGetAcqStartTime,
  kDataDictionaryGetAcqEndTime,
  kDataDictionaryGetStatusReader,
  kDataDictionaryGetModeName,
  kDataDictionaryModeUsesRfSetpoints,
  kAcqControllerInitializeController,
  kAcqControllerInitializeAcquisition,
  kAcqControllerPrepareSetpointAccess,
  kAcqControllerPrepareSetpointTable,
  kAcqControllerIsAbortRequested,
  kAcqControllerGetScaleFactor,
  kAcqControllerGetCurrentMassCalObject,
  kAcqControllerGetCurrentA,
  kAcqControllerGetDefaultCalibCoefficients,
  kAcqControllerSetCalibCoefficients,
  kAcqControllerSetLikelyAAndT0,
  kAcqControllerGetColumnStatistics,
  kAcqControllerEndAIC,
  kAcqControllerReadSetpoint,
  kAcqControllerGetConfigurationName,
  kAcqControllerGetCalibrantMasses,
  kSetpointTableGetSetpoint,
  kSetpointTableSetSetpoint,
  kSetpointTableGetCurrentValue,
  kSpecParserGetCalibrantPeakAttributes,
  kSpecParserGetPeakAttribute,
  kSpecParserFindPeaks,
  kSpecParserShouldAvoidAIC,
  kSpecParserSearchTargetAbundance,
  kTuneFlagsGetFlag,
  kCalibSettingsGetValue,
  kCalibLogFilesOpenLogFile,
  kCalibLogFilesJoinAsCsvLine,
  kInstrumentPathsGetBaseFolder,
  kSpectrumDisplaySetDisplayUpdate,
  kStatusReaderRead,
  kFirmwareLibraryBinarySearchForTargetAb,
  kMassCalCoefficientsGetBinWidth,
  kMassCalCoefficientsGetCoefficientRecord,
  kMassCalCoefficientsTimeToMass,
  kMassCalCoefficientsMassToTime,
  kMassCalCoefficientsCalibrate,
  kMassCalCoefficientsGetCalInfo,
  kMassCalCoefficientsSetCalInfo,
};

inline constexpr std::size_t kOperationCount =
    static_cast<std::size_t>(Operation::kMassCalCoefficientsSetCalInfo) + 1;

// "Collaborator.Operation", e.g. "SpecParser.FindPeaks".
std::string_view NameOf(Operation operation);

// The operation of that name; none when there is no such operation.
std::optional<Operation> OperationOfName(std::string_view name);

}  // namespace tof::standin
