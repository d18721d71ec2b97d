// The checks of each collaborator, in the order in which they are run.
#pragma once

#include <span>

#include "instruments/conformance/check.h"

namespace tof::conformance {

std::span<const Check> InstrumentFactoryChecks();
std::span<const Check> DataDictionaryChecks();
std::span<const Check> SpectrumDisplayChecks();
std::span<const Check> StatusReaderChecks();
std::span<const Check> SetpointTableChecks();
std::span<const Check> AcqControllerChecks();
std::span<const Check> MassCalCoefficientsChecks();
std::span<const Check> PeakListChecks();
std::span<const Check> SpecParserChecks();
std::span<const Check> TuneFlagsChecks();
std::span<const Check> CalibSettingsChecks();
std::span<const Check> CalibLogFilesChecks();
std::span<const Check> InstrumentPathsChecks();
std::span<const Check> FirmwareLibraryChecks();

}  // namespace tof::conformance
