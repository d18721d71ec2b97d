// Candidates that a test writes down as values of A, for the passes that choose among them.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "component/calibration/likely_a.h"
#include "tests/component/calibration/given_peaks.h"
#include "tests/support/calibration_fixture.h"

namespace tof::fakes {

// One calibrant of mass 3600 and t0 = 0: a peak at t us is a candidate of A = 60 / t. The table has
// a row a peak; row 0 is the smallest A, the rows behind it go by their distance to the next
// smaller A.
class GivenCandidates : public CalibrationFixture {
 protected:
  GivenCandidates() {
    masses = Variant::DoubleArray({3600.0});
    instrument.flags["Calibration_t0ToUseToStartLookingforA_usec"] = "0";
  }

  void AInForce(double a_per_us) { instrument.in_force->record[0] = a_per_us / 1000.0; }
  void Allow(double fraction) { instrument.settings["Calibration/TargetAPercentError"] = fraction; }

  static std::vector<PeakRecord> PeaksOf(const std::vector<double>& candidates) {
    std::vector<PeakRecord> peaks;
    for (const double a : candidates) peaks.push_back({.position = 60000.0 / a, .height = 5.0});
    return peaks;
  }

  // `searches` are the peaks of the first and of the second list.
  bool EstimateFrom(std::vector<std::vector<PeakRecord>> searches) {
    Instrument parts = Collaborators();
    host.trace->Forget();
    host.message_boxes.clear();
    parts.spec_parser = std::make_shared<GivenPeaks>(journal, std::move(searches));
    return CalculateLikelyAAndt0Values(parts, host, likely_a, t0, masses);
  }
  bool Estimate(const std::vector<double>& candidates) {
    return EstimateFrom({PeaksOf(candidates)});
  }

  bool WasLoosened() const {
    const auto texts = host.trace->Texts();
    return std::find(texts.begin(), texts.end(),
                     "3 likely candidates not found; loosening criteria...") != texts.end();
  }

  // The rows of a pass as the trace lists them, e.g. "[x] 1.25". Empty for a pass not taken.
  std::vector<std::string> FirstPass() const { return ListedBehind("Top candidates:"); }
  std::vector<std::string> LoosenedPass() const { return ListedBehind("\r\n["); }

  double likely_a = 0.0;
  double t0 = -1.0;

 private:
  std::vector<std::string> ListedBehind(const std::string& begin) const {
    std::vector<std::string> rows;
    for (const std::string& text : host.trace->Texts()) {
      if (text.rfind(begin, 0) != 0) continue;
      for (auto at = text.find("\r\n["); at != std::string::npos; at = text.find("\r\n[", at + 1)) {
        const auto mark_end = text.find(']', at);
        const auto a = text.find("], A[", at) + 5;
        rows.push_back(text.substr(at + 2, mark_end - at - 1) + " " +
                       text.substr(a, text.find(']', a) - a));
      }
    }
    return rows;
  }
};

}  // namespace tof::fakes
