// The spectrum parser on a tape.
#pragma once

#include <memory>
#include <utility>

#include "component/calibrator/collaborators.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedSpecParser : public SpecParser {
 public:
  TapedSpecParser(Tape& tape, ObjectNumber number, std::shared_ptr<SpecParser> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses,
                                              double peak_find_window) override;
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override;
  void FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override;
  bool ShouldAvoidAIC(const Variant& masses, double& peak_find_width) override;
  void SearchTargetAbundance(double mass, double tolerance) override;

 private:
  TapedObject object_;
  std::shared_ptr<SpecParser> inner_;
};

}  // namespace tof::recording
