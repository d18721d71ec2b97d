// Follows a calibration for the line of progress.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "hosts/cli/progress.h"
#include "hosts/native/followed_trace.h"
#include "hosts/native/portable_host.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {

// The stage follows from the routines that the calibrator announces to its trace component, spectra
// and time from the instrument. Where the line is not shown, the host keeps its trace component as
// it is, and nothing is followed. Line, instrument and host outlive it, and it outlives the run.
class CalibrationProgress : public native::RoutineFollower {
 public:
  CalibrationProgress(Progress& line, const standin::StandInInstrument& instrument,
                      std::size_t masses, std::int16_t spectra_per_mass,
                      native::PortableHost& host);

  // To be called when time is going to pass.
  void Show();

  void Enter(std::string_view routine, std::int32_t level) override;
  void Leave() override;

 private:
  void BeginAcquisition(const SpectraPlan& plan);

  Progress& line_;
  const standin::StandInInstrument& instrument_;
  std::size_t masses_;
  std::int16_t spectra_per_mass_;
  std::vector<std::string_view> stages_;  // of the routines that run, innermost last

  // Written by: the beginning of an acquisition.  Read by: Show.
  std::optional<SpectraPlan> plan_;
  std::int64_t spectra_before_ = 0;
  double began_sec_ = 0.0;
};

}  // namespace tof::cli
