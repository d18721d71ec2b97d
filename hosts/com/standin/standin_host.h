// The host services of the stand-in instrument.
#pragma once

#include <memory>

#include "hosts/native/file_journal.h"
#include "hosts/native/portable_host.h"
#include "instruments/spectra/instrument_clock.h"

namespace tof::com {

// An instrument's host with the clock that the two share. Files are those of the scripting file
// system.
struct StandInHost {
  std::shared_ptr<spectra::InstrumentClock> clock;
  std::shared_ptr<native::FileJournal> files;
  std::unique_ptr<native::PortableHost> services;
};

// `real_time`: the clock is the machine's; else it counts what the instrument spends.
StandInHost MakeStandInHost(bool real_time);

}  // namespace tof::com
