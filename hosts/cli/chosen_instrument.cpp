#include "hosts/cli/chosen_instrument.h"

#include "hosts/native/native_host.h"
#include "hosts/native/real_time_clock.h"
#include "hosts/native/virtual_clock.h"
#include "hosts/native/virtual_time_host.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {
namespace {

constexpr std::uint32_t kHostSeed = 1;

}  // namespace

std::shared_ptr<spectra::InstrumentClock> MakeClock(bool real_time) {
  if (real_time) return std::make_shared<native::RealTimeClock>();
  return std::make_shared<native::VirtualClock>();
}

std::unique_ptr<native::PortableHost> MakeHost(
    const InstrumentChoice& choice, std::ostream& messages,
    const std::shared_ptr<spectra::InstrumentClock>& clock) {
  if (choice.real_time) return std::make_unique<native::NativeHost>(messages);
  return std::make_unique<native::VirtualTimeHost>(messages, clock,
                                                   choice.seed.value_or(kHostSeed));
}

standin::InstrumentOptions InstrumentOptionsOf(const InstrumentChoice& choice) {
  standin::InstrumentOptions result;
  result.data_folder = choice.data_folder;
  if (choice.seed) result.seed = *choice.seed;
  result.abort_after_sec = choice.abort_after_seconds;
  if (!choice.fault) return result;
  const auto operation = standin::OperationOfName(choice.fault->operation);
  if (!operation) {
    throw spectra::InputError({"--fail"}, spectra::Quoted(choice.fault->operation),
                              "an operation of the instrument, such as SpecParser.FindPeaks");
  }
  result.faults.push_back({*operation, choice.fault->nth});
  return result;
}

}  // namespace tof::cli
