// The mass-time library in small: an exact two-coefficient fit, and a list of peaks.
#pragma once

#include <vector>

#include "component/calibrator/mass_time_library.h"
#include "tests/support/journal.h"

namespace tof::fakes {

class FakeCoefficients : public MassCalCoefficients {
 public:
  explicit FakeCoefficients(Journal& journal) : journal_(&journal) {}

  CoefficientRecord record{};
  CalInfo info{};
  double bin_width_ns = 0.25;
  // What the next fits are off by in A, relatively; taken from the front, none left: a good fit.
  std::vector<double>* bad_fits = nullptr;

  double GetBinWidth() override;
  CoefficientRecord GetCoefficientRecord() override;
  double TimeToMass(double time_ns) override;
  double MassToTime(double mass) override;
  void Calibrate(const BoundedArray<double>& masses, const BoundedArray<double>& times_ns) override;
  CalInfo GetCalInfo() override;
  void SetCalInfo(const CalInfo& new_info) override;

 private:
  Journal* journal_;
};

class FakePeakList : public PeakList {
 public:
  explicit FakePeakList(Journal& journal) : journal_(journal) {}
  std::vector<PeakRecord> records;

  void Initialize() override;
  std::int32_t Count() override;
  PeakRecord GetRecord(std::int32_t index) override;
  void Add(const PeakRecord& record) override;
  void SetRecord(std::int32_t index, const PeakRecord& record) override;
  void PreparePeakList(std::int32_t first, std::int32_t second) override;

 private:
  PeakRecord& At(std::int32_t index);
  Journal& journal_;
};

}  // namespace tof::fakes
