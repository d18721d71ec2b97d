// The objects of an instrument's mass-time library as the component uses them.
#pragma once

#include <memory>

#include "component/calibrator/mass_time_library.h"
#include "hosts/com/automation/dispatch_object.h"

namespace tof::com {

class AutomationCoefficients : public MassCalCoefficients {
 public:
  explicit AutomationCoefficients(DispatchObject object) : object_(std::move(object)) {}

  double GetBinWidth() override;
  CoefficientRecord GetCoefficientRecord() override;
  double TimeToMass(double time_ns) override;
  double MassToTime(double mass) override;
  void Calibrate(const BoundedArray<double>& masses, const BoundedArray<double>& times_ns) override;
  CalInfo GetCalInfo() override;
  void SetCalInfo(const CalInfo& info) override;

  // The instrument's own object.
  IDispatch* get() const { return object_.get(); }

 private:
  DispatchObject object_;
};

class AutomationPeakList : public PeakList {
 public:
  explicit AutomationPeakList(DispatchObject object) : object_(std::move(object)) {}

  void Initialize() override;
  std::int32_t Count() override;
  PeakRecord GetRecord(std::int32_t index) override;
  void Add(const PeakRecord& record) override;
  void SetRecord(std::int32_t index, const PeakRecord& record) override;
  void PreparePeakList(std::int32_t first, std::int32_t second) override;

  IDispatch* get() const { return object_.get(); }

 private:
  DispatchObject object_;
};

// An instrument's object as the component sees it; none for none.
std::shared_ptr<MassCalCoefficients> CoefficientsOf(ComPtr<IDispatch> object);
std::shared_ptr<PeakList> PeakListOf(ComPtr<IDispatch> object);

// The reverse: the instrument's own object, none for none. Error 13 for one that is not an
// instrument's.
IDispatch* ObjectOf(const std::shared_ptr<MassCalCoefficients>& coefficients);
IDispatch* ObjectOf(const std::shared_ptr<PeakList>& list);

}  // namespace tof::com
