// The conformance suite in a program of one's own: here on the built-in virtual instrument, whose
// place the instrument's own collaborators take.
#include <iostream>

#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "instruments/conformance/suite.h"
#include "instruments/description/description_reader.h"
#include "instruments/standin/instrument.h"

// [page]
int CheckInstrument(tof::InstrumentFactory& instrument, tof::HostServices& host,
                    const tof::conformance::AbortHook& abort) {
  int failed = 0;
  for (const auto& result :
       tof::conformance::RunChecks({.factory = instrument, .host = host, .abort = abort})) {
    if (result.outcome != tof::conformance::Outcome::kFail) continue;
    ++failed;
    std::cerr << result.id << '\n'
              << "  " << result.relied_on << '\n'
              << "  expected: " << result.expected << '\n'
              << "  found:    " << result.found << '\n';
  }
  return failed;
}
// [page]

int main(int argc, char** argv) {
  auto description = tof::description::BuiltInDescription();
  description.base_folder = argc > 1 ? argv[1] : ".";
  const auto clock = std::make_shared<tof::native::VirtualClock>();
  tof::native::VirtualTimeHost host(std::cerr, clock, 1);
  tof::standin::StandInInstrument instrument(description, {}, host, clock);
  return CheckInstrument(
      instrument, host,
      {.ask = [&] { instrument.RequestAbort(); }, .withdraw = [&] { instrument.WithdrawAbort(); }});
}
