// Spectra from files in place of an instrument.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

#include "instruments/recorded/recorded_files.h"
#include "instruments/spectra/instrument_clock.h"
#include "instruments/spectra/spectrum_source.h"

namespace tof::recorded {

// Each acquisition gives the next spectrum, round and round; so does each look at the newest one,
// since a running instrument has then taken another. Setpoints move nothing.
class RecordedSource : public spectra::SpectrumSource {
 public:
  // Reads all files, their names relative to `folder`. Raises an InputError for one that can't be
  // used.
  RecordedSource(const RecordedFiles& files, const std::filesystem::path& folder,
                 std::shared_ptr<spectra::InstrumentClock> clock);

  SpectrumPtr Acquire() override;
  SpectrumPtr Newest() override;
  void SetpointWritten(std::int32_t, double) override {}
  std::optional<double> TrueValue(std::int32_t) const override { return std::nullopt; }
  std::optional<spectra::AbundanceControl> Control() const override { return std::nullopt; }
  double BinWidthNs() const override { return spectra_.front()->bin_width_ns; }

 private:
  double seconds_per_spectrum_;
  std::shared_ptr<spectra::InstrumentClock> clock_;
  std::vector<SpectrumPtr> spectra_;  // at least one
  std::size_t next_ = 0;
};

}  // namespace tof::recorded
