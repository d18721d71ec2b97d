#include <array>

#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

template <class Object>
void RequireCreated(const std::shared_ptr<Object>& object, const char* operation) {
  Require(object != nullptr, std::string("an object from ") + operation, "none");
}

void CreatesEveryCollaborator(Subject& subject) {
  InstrumentFactory& factory = *subject.parts.factory;
  RequireCreated(factory.CreateDataDictionary(), "CreateDataDictionary");
  RequireCreated(factory.CreateAcqController(), "CreateAcqController");
  RequireCreated(factory.CreateSpecParser(), "CreateSpecParser");
  RequireCreated(factory.CreateCalibLogFiles(), "CreateCalibLogFiles");
  RequireCreated(factory.CreateTuneFlags(), "CreateTuneFlags");
  RequireCreated(factory.CreateCalibSettings(), "CreateCalibSettings");
}

void GivesSharedObjects(Subject& subject) {
  InstrumentFactory& factory = *subject.parts.factory;
  RequireCreated(factory.GetInstrumentPaths(), "GetInstrumentPaths");
  RequireCreated(factory.GetFirmwareLibrary(), "GetFirmwareLibrary");
}

void CreatesLibraryObjects(Subject& subject) {
  InstrumentFactory& factory = *subject.parts.factory;
  RequireCreated(factory.CreatePeakList(), "CreatePeakList");
  RequireCreated(factory.CreateMassCalCoefficients(), "CreateMassCalCoefficients");
}

constexpr std::array kChecks{
    Check{"InstrumentFactory", "creates-every-collaborator",
          "The calibrator creates its six collaborators once, when it is created itself, and works "
          "with them for its life: each Create operation gives an object.",
          CreatesEveryCollaborator},
    Check{"InstrumentFactory", "gives-the-shared-objects",
          "The folder of the log files and the firmware's search are reached through objects that "
          "are asked for at each use: neither operation answers with none.",
          GivesSharedObjects},
    Check{"InstrumentFactory", "creates-library-objects",
          "Peak lists for the estimate of A and t0, and empty coefficients to load when there are "
          "no defaults, are made on demand: neither operation answers with none.",
          CreatesLibraryObjects},
};

}  // namespace

std::span<const Check> InstrumentFactoryChecks() {
  return kChecks;
}

}  // namespace tof::conformance
