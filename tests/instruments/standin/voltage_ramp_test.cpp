// What a ramp promises of the voltages that it stores, held against what it read on its walk.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::standin {
namespace {

constexpr std::size_t kSteps = 71;
constexpr double kMinimum = 100'000.0;
constexpr double kMaximum = 200'000.0;

// Keeps every table that it hands on.
class RecordingParser : public SpecParser {
 public:
  RecordingParser(std::shared_ptr<SpecParser> parser, std::vector<PeakAttribsTable>& tables)
      : parser_(std::move(parser)), tables_(tables) {}

  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    tables_.push_back(parser_->GetCalibrantPeakAttributes(masses, window));
    return tables_.back();
  }
  double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) override {
    return parser_->GetPeakAttribute(kind, mass, tolerance);
  }
  void FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought, std::int32_t& count,
                 std::shared_ptr<PeakList>& list) override {
    parser_->FindPeaks(start_ns, end_ns, peaks_sought, count, list);
  }
  bool ShouldAvoidAIC(const Variant& masses, double& peak_find_width) override {
    return parser_->ShouldAvoidAIC(masses, peak_find_width);
  }
  void SearchTargetAbundance(double mass, double tolerance) override {
    parser_->SearchTargetAbundance(mass, tolerance);
  }

 private:
  std::shared_ptr<SpecParser> parser_;
  std::vector<PeakAttribsTable>& tables_;
};

class RecordingInstrument : public StandInInstrument {
 public:
  using StandInInstrument::StandInInstrument;
  std::shared_ptr<SpecParser> CreateSpecParser() override {
    return std::make_shared<RecordingParser>(StandInInstrument::CreateSpecParser(), tables);
  }
  std::vector<PeakAttribsTable> tables;
};

struct NoEvents : StatusEvents {
  void evtNewStatus(std::int32_t, const std::string&) override {}
};

class VoltageRampTest : public testing::TestWithParam<std::uint64_t> {
 protected:
  // The records of every mass after a calibration; `instrument_` keeps what was read.
  PeakTable Calibrate() {
    const ModuleStateScope module;
    NoEvents events;
    TofCalibrator calibrator(instrument_, host_, events);
    std::int16_t spectra = 1;
    bool suppress_aic = false;
    Variant times;
    const Variant masses =
        Variant::DoubleArray(description::CalibrantMasses(description::BuiltInDescription()));
    EXPECT_NE(calibrator.calibrateTOFMassAxis(spectra, masses, times, suppress_aic), nullptr);
    return calibrator.Peaks();
  }

  // The walk comes behind the survey.
  double WalkedAbundance(std::size_t step, std::int32_t mass_index) const {
    return instrument_.tables[kSteps + step](0, mass_index).abundance;
  }

  fakes::Journal journal_;
  std::shared_ptr<spectra::CountingClock> clock_ = std::make_shared<spectra::CountingClock>();
  HostOnAClock host_{journal_, clock_};
  RecordingInstrument instrument_{description::BuiltInDescription(),
                                  InstrumentOptions{.seed = GetParam()}, host_, clock_};
};

TEST_P(VoltageRampTest, StoresTheHighestAbundanceBelowTheMaximum) {
  const PeakTable peaks = Calibrate();
  ASSERT_EQ(instrument_.tables.size(), 2 * kSteps + 10);
  for (std::int32_t m = 0; m <= peaks.UBound(); ++m) {
    double highest = 0.0;
    std::size_t at = 0;
    for (std::size_t step = 0; step < kSteps; ++step) {
      const double abundance = WalkedAbundance(step, m);
      if (abundance >= kMaximum || abundance <= highest) continue;
      highest = abundance;
      at = step;
    }
    EXPECT_NEAR(peaks(m).Abundance, highest, 0.5) << m;
    EXPECT_EQ(peaks(m).Voltage, 20.0 + 2.0 * static_cast<double>(at)) << m;
    EXPECT_GE(peaks(m).Abundance, kMinimum) << m;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, VoltageRampTest, testing::Values(1, 2));

}  // namespace
}  // namespace tof::standin
