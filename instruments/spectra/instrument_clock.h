// The time that passes at an instrument.
#pragma once

namespace tof::spectra {

// Whoever runs an instrument supplies the clock: one that only counts, or one that really waits.
// Host and instrument share it, so that a host's sleep is time for the instrument as well.
class InstrumentClock {
 public:
  virtual ~InstrumentClock() = default;
  virtual double Seconds() const = 0;        // since the instrument was switched on
  virtual void Advance(double seconds) = 0;  // lets that much time pass; 0 or less: none
};

}  // namespace tof::spectra
