// The calibrator with everything that passes between it and the outside on a tape.
#pragma once

#include <cstdint>
#include <memory>

#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "hosts/recording/taped_factory.h"
#include "hosts/recording/taped_host.h"

namespace tof::recording {

// The names by which a recording has its creation and its end.
inline constexpr const char* kNew = "new";
inline constexpr const char* kDelete = "delete";

// Methods, arguments and errors as those of the TofCalibrator. It has a module state of its own, so
// that a recording begins with the creation of the trace object.
class TapedCalibrator {
 public:
  // The instrument, the host and the event sink that are recorded; none in a replay. They and the
  // tape outlive the calibrator.
  TapedCalibrator(Tape& tape, InstrumentFactory* instrument, HostServices* host,
                  StatusEvents* events);
  ~TapedCalibrator();
  TapedCalibrator(const TapedCalibrator&) = delete;
  TapedCalibrator& operator=(const TapedCalibrator&) = delete;

  void WriteDataToSpotFireLog();
  void TestNewStuff();
  Variant GetAveragedTimesForCalibration(const Variant& varExpectedMasses,
                                         std::int16_t& nAvgSpectra, bool& bEnableAbImmuneCalib,
                                         double& dPeakFindWindow);
  // The instrument's own object, or none. In a replay there is no instrument: what comes back tells
  // only whether there was one.
  std::shared_ptr<MassCalCoefficients> calibrateTOFMassAxis(std::int16_t& nAvgSpectra,
                                                            const Variant& varExpectedMasses,
                                                            Variant& varAveragedMeasuredTimes,
                                                            bool& bSuppressAbImmuneCalib,
                                                            OptionalCalibrationArguments& optional);
  const PeakTable& Peaks() const { return calibrator_->Peaks(); }

 private:
  Tape& tape_;
  ModuleStateScope module_state_;
  TapedFactory factory_;
  TapedHost host_;
  TapedStatusEvents events_;
  std::unique_ptr<TofCalibrator> calibrator_;
};

// Calls `method` with arguments that were recorded; not for kNew and kDelete. Raises what the
// method raises, and a MalformedValue for another method or arguments of another type.
void CallRecorded(TapedCalibrator& calibrator, const std::string& method, const Json& arguments);

}  // namespace tof::recording
