// The built-in instrument, for tests to change before it is made.
#pragma once

#include <memory>
#include <utility>

#include "instruments/description/description_reader.h"
#include "instruments/standin/instrument.h"
#include "tests/instruments/counting_clock.h"
#include "tests/support/fake_host.h"

namespace tof::standin {

// Its sleep is time for the instrument as well.
class HostOnAClock : public fakes::FakeHost {
 public:
  HostOnAClock(fakes::Journal& journal, std::shared_ptr<spectra::InstrumentClock> clock)
      : FakeHost(journal), clock_(std::move(clock)) {}

  void Sleep(std::int32_t milliseconds) override {
    FakeHost::Sleep(milliseconds);
    clock_->Advance(milliseconds / 1000.0);
  }

 private:
  std::shared_ptr<spectra::InstrumentClock> clock_;
};

struct TestInstrument {
  explicit TestInstrument(
      description::InstrumentDescription description = description::BuiltInDescription(),
      InstrumentOptions options = {})
      : instrument(std::move(description), options, host, clock) {}

  fakes::Journal journal;
  std::shared_ptr<spectra::CountingClock> clock = std::make_shared<spectra::CountingClock>();
  HostOnAClock host{journal, clock};
  StandInInstrument instrument;
};

}  // namespace tof::standin
