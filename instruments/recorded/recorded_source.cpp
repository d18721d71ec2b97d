#include "instruments/recorded/recorded_source.h"

#include <utility>

#include "instruments/spectra/text_reader.h"

namespace tof::recorded {
namespace {

std::vector<spectra::Spectrum> ReadFile(const RecordedFile& file,
                                        const std::filesystem::path& folder) {
  const std::filesystem::path path = folder / file.path;
  if (file.format == SpectrumFormat::kMzml) return spectra::ReadMzml(path, file.which);
  std::vector<spectra::Spectrum> one;
  one.push_back(spectra::ReadTextSpectrum(path));
  return one;
}

}  // namespace

RecordedSource::RecordedSource(const RecordedFiles& files, const std::filesystem::path& folder,
                               std::shared_ptr<spectra::InstrumentClock> clock)
    : seconds_per_spectrum_(files.seconds_per_spectrum), clock_(std::move(clock)) {
  for (const RecordedFile& file : files.files) {
    for (spectra::Spectrum& spectrum : ReadFile(file, folder)) {
      for (double& time_ns : spectrum.time_ns) time_ns += files.time_offset_ns;
      spectra_.push_back(std::make_shared<const spectra::Spectrum>(std::move(spectrum)));
    }
  }
}

spectra::SpectrumSource::SpectrumPtr RecordedSource::Acquire() {
  clock_->Advance(seconds_per_spectrum_);
  return Newest();
}

spectra::SpectrumSource::SpectrumPtr RecordedSource::Newest() {
  SpectrumPtr spectrum = spectra_[next_];
  next_ = (next_ + 1) % spectra_.size();
  return spectrum;
}

}  // namespace tof::recorded
