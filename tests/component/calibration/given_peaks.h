// A spectrum whose peaks a test writes down, in place of those of flying ions.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "component/calibrator/collaborators.h"
#include "tests/support/fake_mass_time.h"

namespace tof::fakes {

// Finds `searches[n]` in search n (from 0), the last one in every later search. Is asked for
// nothing else.
class GivenPeaks : public SpecParser {
 public:
  GivenPeaks(Journal& journal, std::vector<std::vector<PeakRecord>> searches)
      : journal_(journal), searches_(std::move(searches)) {}

  void FindPeaks(double /*start_ns*/, double /*end_ns*/, std::int32_t /*sought*/,
                 std::int32_t& count, std::shared_ptr<PeakList>& list) override {
    auto found = std::make_shared<FakePeakList>(journal_);
    found->records = searches_[std::min(n_searches_++, searches_.size() - 1)];
    count = found->Count();
    list = found;
  }

  PeakAttribsTable GetCalibrantPeakAttributes(const Variant&, double) override { Refuse(); }
  double GetPeakAttribute(PeakCalculationtype, double, double) override { Refuse(); }
  bool ShouldAvoidAIC(const Variant&, double&) override { Refuse(); }
  void SearchTargetAbundance(double, double) override { Refuse(); }

 private:
  [[noreturn]] static void Refuse() { Raise(RunTimeError::kInvalidCall); }

  Journal& journal_;
  std::vector<std::vector<PeakRecord>> searches_;
  std::size_t n_searches_ = 0;
};

}  // namespace tof::fakes
