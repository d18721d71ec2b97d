// The flight path's slow change with time, and the ion source's with each spectrum.
#pragma once

#include "instruments/virtual/parameters.h"
#include "instruments/virtual/random.h"
#include "instruments/virtual/samplers.h"

namespace tof::virtual_instrument {

// A steady drift plus a random walk, in m/z ppm; 0 at time 0.
class FlightPathDrift {
 public:
  FlightPathDrift(const DriftParameters& parameters, Random random)
      : parameters_(parameters), random_(random) {}

  // Moves on to `now_sec` of virtual time. Throws std::invalid_argument when that lies before the
  // time reached, or is not finite; nothing has changed then.
  void AdvanceTo(double now_sec);

  double ppm() const;
  double now_sec() const { return now_sec_; }

 private:
  DriftParameters parameters_;
  Random random_;
  NormalSampler normal_;
  double now_sec_ = 0.0;
  double walk_ppm_ = 0.0;
};

// Relative ion rates, one spectrum after the other; each has mean 1.
class SourceFlicker {
 public:
  SourceFlicker(const FlickerParameters& parameters, Random random);

  // Of the next spectrum: the factor that all species share. Its logarithm is an autoregressive
  // process of first order that starts in its stationary state.
  double NextCommonFactor();

  // Of one species in one spectrum; remembers nothing.
  double NextOwnFactor();

 private:
  FlickerParameters parameters_;
  Random random_;
  NormalSampler normal_;
  double common_state_;  // standard normal
};

}  // namespace tof::virtual_instrument
