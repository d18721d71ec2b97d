// The built-in instrument, for tests to change before it is made.
#pragma once

#include <memory>
#include <utility>

#include "instruments/description/description_reader.h"
#include "instruments/standin/instrument.h"
#include "tests/instruments/counting_clock.h"
#include "tests/support/fake_host.h"

namespace tof::standin {

struct TestInstrument {
  explicit TestInstrument(
      description::InstrumentDescription description = description::BuiltInDescription(),
      InstrumentOptions options = {})
      : instrument(std::move(description), options, host, clock) {}

  fakes::Journal journal;
  fakes::FakeHost host{journal};
  std::shared_ptr<spectra::CountingClock> clock = std::make_shared<spectra::CountingClock>();
  StandInInstrument instrument;
};

}  // namespace tof::standin
