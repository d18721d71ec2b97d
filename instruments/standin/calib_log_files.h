#pragma once

#include <array>
#include <memory>
#include <string>

#include "component/calibrator/collaborators.h"
#include "instruments/standin/instrument_state.h"

namespace tof::standin {

// A log file is <base folder>\Logfiles\<prefix>_<YYYYMMDD>_<HHmmss>.<extension>, by the host's
// clock. One that is there already is left alone: "_2", "_3" and so on follow the time.
class StandInCalibLogFiles : public CalibLogFiles {
 public:
  explicit StandInCalibLogFiles(std::shared_ptr<InstrumentState> state)
      : state_(std::move(state)) {}

  std::shared_ptr<TextStream> OpenLogFile(const std::string& prefix, const std::string& header,
                                          const std::string& extension) override;
  std::string JoinAsCsvLine(const std::array<Variant, 6>& values) override;

 private:
  std::shared_ptr<InstrumentState> state_;
};

}  // namespace tof::standin
