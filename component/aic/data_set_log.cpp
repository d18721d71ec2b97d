#include "component/aic/data_set_log.h"

#include <string>

#include "component/automation/number_text.h"
#include "component/calibrator/log_paths.h"
#include "component/trace/guarded.h"

namespace tof {

void WriteDataToSpotFireLog(Instrument& instrument, HostServices& host, const PeakTable& peaks) {
  constexpr Routine kRoutine{.name = "WriteDataToSpotFireLog", .on_error = OnError::kSwallow};
  Guarded(kRoutine, [&](TraceObj&) {
    // Two readings of the clock, the date first; both stand on every row of this call.
    const std::string date = DateText(host.Now());
    const std::string time = TimeText(host.Now());
    const std::string path = LogFilePath(instrument, "AbImmunecalib_SpotFireDataSetLog.csv");
    const auto files = host.CreateFileSystem();
    const bool existed = Need(files).FileExists(path);
    const auto file = files->OpenForAppending(path);
    if (!existed) {
      Need(file).WriteLine("Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance");
    }
    for (std::int32_t m = peaks.LBound(); m <= peaks.UBound(); ++m) {
      const auto& measurements = peaks(0).SpectrumAttribs;  // mass 0's range serves all masses
      for (std::int32_t k = measurements.LBound(1); k <= measurements.UBound(1); ++k) {
        const auto& attribs = peaks(m).SpectrumAttribs;
        // The flight time is row 0's, the abundance row 1's: deliberate.
        Need(file).WriteLine(instrument.calib_log_files->JoinAsCsvLine(
            {date, time, m, k, attribs(k, 0).time, attribs(k, 1).abundance}));
      }
    }
  });
}

}  // namespace tof
