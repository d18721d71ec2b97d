// A stand-in instrument as a COM server offers it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/com/standin/standin_host.h"
#include "instruments/description/description_reader.h"
#include "instruments/standin/instrument.h"

namespace tof::com {

// What an instrument is to be.
struct InstrumentChoice {
  description::InstrumentDescription description = description::BuiltInDescription();
  std::filesystem::path data_folder;
  std::optional<std::uint64_t> seed;
  bool real_time = false;
};

// An instrument with a host of its own, which what the instrument created keeps alive.
class HostedInstrument {
 public:
  // Raises an InputError for recorded files that can't be used.
  explicit HostedInstrument(const InstrumentChoice& choice);

  standin::StandInInstrument& Instrument() { return instrument_; }
  double Seconds() const { return host_->clock->Seconds(); }
  const std::vector<std::string>& Files() const { return host_->files->written; }

  // Makes the folder of the log files unless it is there. Raises an InputError when it can't be
  // made.
  void MakeLogFolder() const;

  // Searches as the firmware library does. A failure leaves the text of SearchError and answers the
  // value of the AIC setpoint.
  struct Search {
    float minimum = 0.0F;  // abundance
    float maximum = 0.0F;
    float speed_up_factor = 1.0F;
    float precision_volts = 0.0F;
    float low_volts = 0.0F;
    float high_volts = 0.0F;
    float window_start_ns = 0.0F;
    float window_end_ns = 0.0F;
  };
  float SearchTargetAbundance(const Search& search);
  const std::string& SearchError() const { return search_error_; }

 private:
  std::shared_ptr<StandInHost> host_;
  standin::StandInInstrument instrument_;
  std::string search_error_;
};

}  // namespace tof::com
