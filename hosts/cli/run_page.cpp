#include "hosts/cli/run_page.h"

#include "hosts/report/html_page.h"

namespace tof::cli {

RunPage::RunPage(const std::filesystem::path& path) {
  if (!path.empty()) file_.emplace(path);
}

InstrumentFactory& RunPage::Follow(standin::StandInInstrument& instrument,
                                   native::PortableHost& host) {
  if (!file_) return instrument;
  return watch_.emplace(instrument, host).Instrument();
}

void RunPage::Deliver(const CalibrationReport& report) {
  if (file_) file_->Commit(report::HtmlOf(watch_->PageOf(report)));
}

}  // namespace tof::cli
