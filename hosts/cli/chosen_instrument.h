// What an instrument that the user chose is made with.
#pragma once

#include <memory>
#include <ostream>

#include "hosts/cli/options.h"
#include "hosts/native/portable_host.h"
#include "instruments/spectra/instrument_clock.h"
#include "instruments/standin/instrument.h"

namespace tof::cli {

std::shared_ptr<spectra::InstrumentClock> MakeClock(bool real_time);

// The host that shares `clock` with the instrument. Message boxes go to `messages`.
std::unique_ptr<native::PortableHost> MakeHost(
    const InstrumentChoice& choice, std::ostream& messages,
    const std::shared_ptr<spectra::InstrumentClock>& clock);

// Raises an InputError for a fault of an operation that does not exist.
standin::InstrumentOptions InstrumentOptionsOf(const InstrumentChoice& choice);

}  // namespace tof::cli
