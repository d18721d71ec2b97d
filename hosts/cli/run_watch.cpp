#include "hosts/cli/run_watch.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>

#include "component/automation/number_text.h"
#include "hosts/cli/live_page.h"
#include "hosts/native/followed_trace.h"
#include "instruments/standin/instrument_access.h"

namespace tof::cli {
namespace {

std::function<report::Moment()> MomentsOf(const standin::StandInInstrument& instrument) {
  const auto start = std::chrono::steady_clock::now();
  return [&instrument, start] {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return report::Moment{instrument.State().clock->Seconds(), passed.count(),
                          instrument.Counted().spectra};
  };
}

std::string TextOf(const DateTime& moment) {
  return fmt::format("{:04}-{:02}-{:02} {}", moment.year, moment.month, moment.day,
                     ColonTimeText(moment));
}

}  // namespace

RunWatch::RunWatch(standin::StandInInstrument& instrument, native::PortableHost& host)
    : instrument_(instrument),
      began_(TextOf(host.Now())),
      coefficients_before_(instrument.State().in_force.coefficients),
      setpoints_before_(instrument.State().setpoints),
      now_(MomentsOf(instrument)),
      stages_(std::make_shared<report::StageClock>(now_, seen_)),
      observing_(instrument, MovedSetpointOf(instrument.State()), now_, stages_, seen_) {
  native::FollowTrace(host, *stages_);
}

report::ReportPage RunWatch::PageOf(const CalibrationReport& report) {
  stages_->Stop();
  report::ReportPage page =
      LivePageOf(report, {seen_, coefficients_before_, setpoints_before_}, instrument_);
  page.moment = "Began " + began_ + ", by the instrument's clock";
  return page;
}

}  // namespace tof::cli
