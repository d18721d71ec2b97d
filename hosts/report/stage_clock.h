// Which stage a calibration is in, and what each took.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/native/followed_trace.h"
#include "hosts/report/observation.h"

namespace tof::report {

// Now, on the instrument's clock and on the wall's, and the spectra taken until now.
struct Moment {
  double instrument_seconds = 0.0;
  double wall_seconds = 0.0;
  std::int64_t spectra = 0;
};

// Told of every routine that begins and ends. A routine without a stage of its own belongs to that
// of its caller.
class StageClock : public native::RoutineFollower {
 public:
  StageClock(std::function<Moment()> now, Observation& seen);

  void Enter(std::string_view routine, std::int32_t level) override;
  void Leave() override;
  void Print(std::string_view line) override;
  // Adds what has passed since the last call to the present stage.
  void Stop() { Attribute(); }

  Stage stage() const;
  const std::string& routine() const;  // the innermost one with a stage

 private:
  struct Frame {
    std::string routine;
    Stage stage = Stage::kPreparing;
  };

  void Attribute();

  std::function<Moment()> now_;
  Observation& seen_;
  Moment last_;
  std::vector<Frame> frames_;
};

}  // namespace tof::report
